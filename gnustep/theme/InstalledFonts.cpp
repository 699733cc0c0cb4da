#include "gnustep/theme/InstalledFonts.h"

#include <memory>

#include <fontconfig/fontconfig.h>

namespace veltrix::gnustep {

bool isFontInstalled(const char* postScriptName) {
    const std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)> pattern(FcPatternCreate(),
                                                                          FcPatternDestroy);
    const std::unique_ptr<FcObjectSet, decltype(&FcObjectSetDestroy)> wanted(
        FcObjectSetBuild(FC_POSTSCRIPT_NAME, nullptr), FcObjectSetDestroy);
    if (!pattern || !wanted)
        return false;
    FcPatternAddString(pattern.get(), FC_POSTSCRIPT_NAME,
                       reinterpret_cast<const FcChar8*>(postScriptName));
    const std::unique_ptr<FcFontSet, decltype(&FcFontSetDestroy)> found(
        FcFontList(nullptr, pattern.get(), wanted.get()), FcFontSetDestroy);
    return found && found->nfont > 0;
}

}  // namespace veltrix::gnustep
