// What happened in one run of a property, line by line, and what was wrong with it first. A run
// that has gone wrong goes on quietly to its end. One thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace veltrix::test {

class Story {
  public:
    void tell(std::string_view event) {
        text_.append(indentation_, ' ').append(event).append("\n");
    }

    void complain(std::string_view complaint) {
        if (!wentWrong_) {
            wentWrong_ = true;
            tell("WRONG: " + std::string(complaint));
        }
    }

    void expect(bool condition, std::string_view complaint) {
        if (!condition) {
            complain(complaint);
        }
    }

    [[nodiscard]] bool wentWrong() const { return wentWrong_; }
    [[nodiscard]] const std::string& text() const { return text_; }
    [[nodiscard]] std::optional<std::string> ifWrong() const {
        return wentWrong_ ? std::optional(text_) : std::nullopt;
    }

    // What is told while this lives happens inside what was told last.
    class Inside {
      public:
        explicit Inside(Story& story) : story_(story) { story_.indentation_ += kStep; }
        ~Inside() { story_.indentation_ -= kStep; }
        Inside(const Inside&) = delete;
        Inside& operator=(const Inside&) = delete;

      private:
        static constexpr std::size_t kStep = 4;
        Story& story_;
    };

  private:
    std::string text_;
    std::size_t indentation_ = 0;
    bool wentWrong_ = false;
};

}  // namespace veltrix::test
