// What can be seen on the program's windows at one moment. Plain values, made on the main thread
// and read anywhere. Lengths are in pixels of the display, from its upper left corner.
#pragma once

#include <string>
#include <vector>

namespace veltrix::tour {

struct Frame {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

struct SeenView {
    std::string kind;    // "button", "checkBox", "statusItem", "field", "secureField" or "text"
    std::string title;   // a button's
    std::string text;    // a field's or text's; a bullet for every character of a secure one
    std::string label;   // what assistive technology reads
    std::string action;  // the message that a button sends
    std::string toolTip;
    bool enabled = false;
    bool on = false;
    Frame frame;
};

struct SeenItem {
    std::string title;  // empty: a separator
    bool enabled = false;
    Frame frame;
};

struct SeenWindow {
    std::string title;
    bool key = false;
    bool modal = false;
    Frame frame;
    std::vector<SeenView> views;  // from the top of the view tree down, in the order of drawing
    std::vector<SeenItem> items;  // of a menu
};

using Sight = std::vector<SeenWindow>;

// On the main thread only.
[[nodiscard]] Sight takeLook();

// The same from any other thread: waits until the main thread has looked, whatever run loop mode it
// is in.
[[nodiscard]] Sight lookFromOutside();

// One line of JSON, line feed included.
[[nodiscard]] std::string answerLine(const Sight& sight);

}  // namespace veltrix::tour
