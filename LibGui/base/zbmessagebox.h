#pragma once

#include <string>

namespace Tervalon {

// The button texts of message boxes. A button is one text: the caption, then
// options each after a '#': "Default" (the Return key presses it), "Escape"
// (the Esc key presses it), "Shortcut:" and a key, "Tooltip:" and a tip. The
// key a slot receives is the caption, the text before the first '#'.
class ZBMessageBox {
public:
    static const char* const C_Ok;
    static const char* const C_Cancel;
    static const char* const C_Yes;
    static const char* const C_No;
    static const char* const C_One;
    static const char* const C_All;
    static const char* const C_Delete;
    static const char* const C_Save;
    static const char* const C_Quit;
    static const char* const C_Details;
    static const char* const C_KeyDefault;
    static const char* const C_KeyEscape;
    static const char* const C_KeyTooltip;
    static const char* const C_KeyShortcut;
    static const char C_KeySeparator;

    // A button description taken apart. An empty description means no button.
    struct Button {
        bool m_present = false;
        std::string m_caption;
        bool m_default = false;
        bool m_escape = false;
        std::string m_shortcut;
        std::string m_toolTip;
    };

    virtual ~ZBMessageBox() = default;

    static Button parse_button(const std::string& description);
    // The caption of a description: what a slot receives when it is pressed.
    static std::string key_of(const std::string& description);
    // Builds a description. An escape button is written with "Default", as
    // stored descriptions always have been; a caller wanting Esc writes "Escape" itself.
    static std::string construct_key(const std::string& caption, bool isDefault, bool isEscape,
                                     const std::string& toolTip = std::string(),
                                     const std::string& shortcut = std::string());
};

} // namespace Tervalon
