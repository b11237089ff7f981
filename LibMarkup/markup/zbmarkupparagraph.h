#pragma once

#include "LibCore/ptrarray/zbptrarray.h"
#include "LibMarkup/markup/zbmarkupelement.h"
#include "LibMarkup/markup/zbmarkuptextelement.h"

namespace Tervalon {

// One paragraph, or a header when the level is above 0: a row of elements
// shown one after another, indented by a number of steps. Owns its elements.
class ZBMarkupParagraph : public ZBMarkupElement {
public:
    // Empty text gives an empty paragraph; any other text one text element.
    explicit ZBMarkupParagraph(const std::string& text = std::string(), int headerLevel = 0, int indentLevel = 0);
    ZBMarkupParagraph(const ZBMarkupParagraph& other);
    ZBMarkupParagraph& operator=(const ZBMarkupParagraph& other);
    ~ZBMarkupParagraph() override;

    ZBMarkupElement* clone() const override;
    std::string get_raw_text() const override;
    void dump(std::ostream& out, int indent) const override;

    // Takes ownership. A null element is refused with an error.
    int add_element(ZBMarkupElement* element);
    // A text element in this paragraph's own look; returns it for further setting.
    ZBMarkupTextElement* add_text(const std::string& text, bool preformatted = false);
    int insert_element(ZBMarkupElement* element, int index);
    int get_nelements() const { return m_element.size(); }
    ZBMarkupElement* get_element_by_index(int index) const;
    void clear_elements() { m_element.clear(); }

    void set_header_level(int level) { m_headerLevel = level; }
    int get_header_level() const { return m_headerLevel; }
    void set_indent(int level) { m_indentLevel = level; }
    int get_indent() const { return m_indentLevel; }

    ZBPtrArray<ZBMarkupElement> m_element;
    int m_headerLevel;
    int m_indentLevel;

protected:
    bool same_content(const ZBMarkupElement& other) const override;
};

} // namespace Tervalon
