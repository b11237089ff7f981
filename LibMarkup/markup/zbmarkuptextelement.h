#pragma once

#include "LibMarkup/markup/zbmarkupelement.h"

namespace Tervalon {

// A run of words in one look. Line feeds in the text are line breaks; a
// preformatted text keeps its blanks and is shown in a fixed-width face.
class ZBMarkupTextElement : public ZBMarkupElement {
public:
    explicit ZBMarkupTextElement(const std::string& text = std::string(), bool preformatted = false);

    ZBMarkupElement* clone() const override;
    std::string get_raw_text() const override;
    void dump(std::ostream& out, int indent) const override;

    const std::string& get_text() const { return m_text; }
    void set_text(const std::string& text) { m_text = text; }
    bool get_preformatted() const { return m_preformatted; }
    void set_preformatted(bool on) { m_preformatted = on; }

    std::string m_text;
    bool m_preformatted;

protected:
    bool same_content(const ZBMarkupElement& other) const override;
};

} // namespace Tervalon
