#pragma once

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace Tervalon {

// A scheme's row colour as red, green and blue percentages; -1 for none.
struct ZBNotifyColour {
    int red = -1;
    int green = -1;
    int blue = -1;
    bool is_set() const { return red >= 0 && green >= 0 && blue >= 0; }
    bool operator==(const ZBNotifyColour& other) const
    {
        return red == other.red && green == other.green && blue == other.blue;
    }
};

// How the user wants one kind of finding to reach them: an alert, a pop-up,
// a count on the badge, a row in the list, or nothing. The choices form a
// ladder, so a scheme set to alert also counts on the badge and shows in the
// list. A scheme never holds a choice the platform cannot carry out: it steps
// down to the next one it can do. Owned by a ZBNotifyList.
class ZBNotifyScheme {
public:
    enum E_Response { E_Prompt = 100, E_Popup = 80, E_Badge = 60, E_List = 40, E_None = 20 };

    ZBNotifyScheme(int id, const std::string& name, int response, const std::string& icon = std::string(),
                   bool hasList = true, const ZBNotifyColour& colour = ZBNotifyColour());

    int get_id() const { return m_id; }
    const std::string& get_name() const { return m_name; }
    const std::string& get_icon() const { return m_icon; }
    const ZBNotifyColour& get_colour() const { return m_colour; }
    bool get_has_list() const { return m_hasList; }

    // The key of the scheme's choice in the parameter store, made from its name.
    std::string scheme_name() const;

    int get_response() const { return m_response; }
    // Takes the value to the ladder and steps it down to what can be done.
    void set_response(int value);
    // The choices this scheme can do, highest first, with their texts.
    std::vector<std::pair<int, std::string>> get_responses() const;

    bool get_prompt() const { return m_response == E_Prompt; }
    bool get_popup() const { return m_response == E_Popup; }
    bool get_badge() const { return m_response >= E_Badge; }
    bool get_list() const { return m_response >= E_List; }

    bool can_prompt() const { return m_canPrompt; }
    bool can_popup() const { return m_canPopup; }
    bool can_badge() const { return m_canBadge; }
    bool can_list() const { return m_hasList; }
    // What the platform offers; the current choice is stepped down to fit.
    void set_capabilities(bool prompt, bool popup, bool badge);

    static const char* response_text(int value);

    void dump(std::ostream& out, int indent) const;

private:
    int m_id;
    std::string m_name;
    int m_response;
    bool m_hasList;
    std::string m_icon;
    ZBNotifyColour m_colour;
    bool m_canPrompt = true;
    bool m_canPopup = true;
    bool m_canBadge = true;
};

} // namespace Tervalon
