#include "LibGui/base/zbnotifyscheme.h"
#include "LibObject/object/zbdump.h"

#include <cctype>

namespace Tervalon {

ZBNotifyScheme::ZBNotifyScheme(int id, const std::string& name, int response, const std::string& icon, bool hasList,
                               const ZBNotifyColour& colour)
    : m_id(id), m_name(name), m_response(E_None), m_hasList(hasList), m_icon(icon), m_colour(colour)
{
    set_response(response);
}

std::string ZBNotifyScheme::scheme_name() const
{
    // "Late tasks" gives "NotifyLateTasks": one word, safe as a key in the file.
    std::string key = "Notify";
    bool startWord = true;
    for (char c : m_name) {
        if (std::isalnum(static_cast<unsigned char>(c))) {
            key += startWord ? char(std::toupper(static_cast<unsigned char>(c))) : c;
            startWord = false;
        } else {
            startWord = true;
        }
    }
    return key;
}

void ZBNotifyScheme::set_response(int value)
{
    // Values between the rungs (from an edited file) take the rung below.
    int rung = value >= E_Prompt ? E_Prompt
             : value >= E_Popup  ? E_Popup
             : value >= E_Badge  ? E_Badge
             : value >= E_List   ? E_List
                                 : E_None;
    if (rung == E_Prompt && !can_prompt())
        rung = E_Popup;
    if (rung == E_Popup && !can_popup())
        rung = E_Badge;
    if (rung == E_Badge && !can_badge())
        rung = E_List;
    if (rung == E_List && !can_list())
        rung = E_None;
    m_response = rung;
}

std::vector<std::pair<int, std::string>> ZBNotifyScheme::get_responses() const
{
    std::vector<std::pair<int, std::string>> responses;
    const std::pair<int, bool> ladder[] = {
        {E_Prompt, can_prompt()}, {E_Popup, can_popup()}, {E_Badge, can_badge()}, {E_List, can_list()}, {E_None, true}};
    for (const auto& rung : ladder)
        if (rung.second)
            responses.emplace_back(rung.first, response_text(rung.first));
    return responses;
}

void ZBNotifyScheme::set_capabilities(bool prompt, bool popup, bool badge)
{
    m_canPrompt = prompt;
    m_canPopup = popup;
    m_canBadge = badge;
    set_response(m_response);
}

const char* ZBNotifyScheme::response_text(int value)
{
    switch (value) {
    case E_Prompt: return "Show an alert dialog";
    case E_Popup: return "Pop up a warning message";
    case E_Badge: return "Set the badge icon number";
    case E_List: return "Show in the notification list";
    default: return "Don't show a warning";
    }
}

void ZBNotifyScheme::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBNotifyScheme", out, indent);
    dump.add("m_id", m_id);
    dump.add_entry("m_name", m_name);
    dump.add("m_response", m_response);
    dump.add("m_hasList", m_hasList);
    dump.add_entry("m_icon", m_icon);
    dump.add("m_colour.red", m_colour.red);
    dump.add("m_colour.green", m_colour.green);
    dump.add("m_colour.blue", m_colour.blue);
    dump.write();
}

} // namespace Tervalon
