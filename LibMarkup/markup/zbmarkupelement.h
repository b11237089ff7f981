#pragma once

#include <iosfwd>
#include <string>

namespace Tervalon {

// The base of everything a markup page holds: how it looks (colours, bold,
// italics) and where it links to. Colours are texts the renderer passes on
// ("red", "#ffe0e0"); empty means the renderer's default. A plain element is
// also what ZBMarkupSettings keeps as a named set of defaults.
class ZBMarkupElement {
public:
    ZBMarkupElement();
    virtual ~ZBMarkupElement();

    virtual ZBMarkupElement* clone() const;
    // The element's words without any formatting.
    virtual std::string get_raw_text() const;
    virtual void dump(std::ostream& out, int indent) const;

    void set_defaults(bool all);
    // Copies only the look and the link, whatever the two elements are.
    void copy_formatting(const ZBMarkupElement& other);
    bool same_formatting(const ZBMarkupElement& other) const;
    bool has_formatting() const;

    void set_foreground(const std::string& colour) { m_foregroundColour = colour; }
    void set_background(const std::string& colour) { m_backgroundColour = colour; }
    void set_bold(bool bold) { m_bold = bold; }
    void set_italics(bool italics) { m_italics = italics; }
    void set_anchor(const std::string& anchor) { m_anchor = anchor; }
    const std::string& get_foreground() const { return m_foregroundColour; }
    const std::string& get_background() const { return m_backgroundColour; }
    bool get_bold() const { return m_bold; }
    bool get_italics() const { return m_italics; }
    const std::string& get_anchor() const { return m_anchor; }

    bool operator==(const ZBMarkupElement& other) const;
    bool operator!=(const ZBMarkupElement& other) const { return !(*this == other); }

    std::string m_foregroundColour;
    std::string m_backgroundColour;
    bool m_bold;
    bool m_italics;
    std::string m_anchor;

protected:
    // Whether the other element is of the same kind with the same content;
    // the look is compared by operator==.
    virtual bool same_content(const ZBMarkupElement& other) const;
};

} // namespace Tervalon
