#pragma once

#include "LibCore/ptrarray/zbptrarray.h"
#include "LibMarkup/markup/zbmarkupelement.h"
#include "LibMarkup/markup/zbmarkupparagraph.h"

namespace Tervalon {

// A whole display: a title and a body of paragraphs, tables and other
// elements in order. Owns its body. Its own colours are the page's.
class ZBMarkupPage : public ZBMarkupElement {
public:
    explicit ZBMarkupPage(const std::string& title = std::string());
    ZBMarkupPage(const ZBMarkupPage& other);
    ZBMarkupPage& operator=(const ZBMarkupPage& other);
    ~ZBMarkupPage() override;

    ZBMarkupElement* clone() const override;
    // The body's elements, one line each.
    std::string get_raw_text() const override;
    void dump(std::ostream& out, int indent) const override;

    // Takes ownership; a null element is refused with an error.
    int append(ZBMarkupElement* element);
    int insert(int index, ZBMarkupElement* element);
    // One paragraph per line of the text; empty text adds nothing.
    void add_paragraphs(const std::string& text);
    // A new paragraph appended and returned, for filling in place.
    ZBMarkupParagraph* add_paragraph(const std::string& text = std::string(), int headerLevel = 0,
                                     int indentLevel = 0);
    int get_nelements() const { return m_body.size(); }
    ZBMarkupElement* get_element_by_index(int index) const;
    void clear() { m_body.clear(); }

    void set_title(const std::string& title) { m_title = title; }
    const std::string& get_title() const { return m_title; }

    std::string m_title;
    ZBPtrArray<ZBMarkupElement> m_body;

protected:
    bool same_content(const ZBMarkupElement& other) const override;
};

} // namespace Tervalon
