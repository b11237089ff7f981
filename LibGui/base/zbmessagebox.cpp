#include "LibGui/base/zbmessagebox.h"

namespace Tervalon {

const char* const ZBMessageBox::C_Ok = "Ok#Default";
const char* const ZBMessageBox::C_Cancel = "Cancel#Escape";
const char* const ZBMessageBox::C_Yes = "Yes#Default#Shortcut:y";
const char* const ZBMessageBox::C_No = "No#Escape#Shortcut:n";
const char* const ZBMessageBox::C_One = "One#Shortcut:o";
const char* const ZBMessageBox::C_All = "All#Shortcut:a";
const char* const ZBMessageBox::C_Delete = "Delete#Shortcut:d";
const char* const ZBMessageBox::C_Save = "Save#Default#Shortcut:s";
const char* const ZBMessageBox::C_Quit = "Quit#Shortcut:q";
const char* const ZBMessageBox::C_Details = "Details";
const char* const ZBMessageBox::C_KeyDefault = "Default";
const char* const ZBMessageBox::C_KeyEscape = "Escape";
const char* const ZBMessageBox::C_KeyTooltip = "Tooltip:";
const char* const ZBMessageBox::C_KeyShortcut = "Shortcut:";
const char ZBMessageBox::C_KeySeparator = '#';

ZBMessageBox::Button ZBMessageBox::parse_button(const std::string& description)
{
    Button button;
    if (description.empty())
        return button;
    button.m_present = true;
    size_t start = 0;
    bool first = true;
    while (true) {
        size_t end = description.find(C_KeySeparator, start);
        std::string token = description.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (first) {
            button.m_caption = token;
            first = false;
        } else if (token == C_KeyDefault) {
            button.m_default = true;
        } else if (token == C_KeyEscape) {
            button.m_escape = true;
        } else if (token.compare(0, std::string(C_KeyShortcut).size(), C_KeyShortcut) == 0) {
            button.m_shortcut = token.substr(std::string(C_KeyShortcut).size());
        } else if (token.compare(0, std::string(C_KeyTooltip).size(), C_KeyTooltip) == 0) {
            button.m_toolTip = token.substr(std::string(C_KeyTooltip).size());
        }
        if (end == std::string::npos)
            break;
        start = end + 1;
    }
    return button;
}

std::string ZBMessageBox::key_of(const std::string& description)
{
    return description.substr(0, description.find(C_KeySeparator));
}

std::string ZBMessageBox::construct_key(const std::string& caption, bool isDefault, bool isEscape,
                                        const std::string& toolTip, const std::string& shortcut)
{
    std::string key = caption;
    if (isDefault)
        key += std::string(1, C_KeySeparator) + C_KeyDefault;
    if (isEscape)
        key += std::string(1, C_KeySeparator) + C_KeyDefault;
    if (!toolTip.empty())
        key += std::string(1, C_KeySeparator) + C_KeyTooltip + toolTip;
    if (!shortcut.empty())
        key += std::string(1, C_KeySeparator) + C_KeyShortcut + shortcut;
    return key;
}

} // namespace Tervalon
