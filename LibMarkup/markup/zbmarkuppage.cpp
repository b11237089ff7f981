#include "LibMarkup/markup/zbmarkuppage.h"

#include "LibCore/error/zberror.h"

#include <ostream>

namespace Tervalon {

ZBMarkupPage::ZBMarkupPage(const std::string& title) : m_title(title) {}

ZBMarkupPage::ZBMarkupPage(const ZBMarkupPage& other) : ZBMarkupElement(other), m_title(other.m_title)
{
    for (const ZBMarkupElement* element : other.m_body)
        m_body.push_back(element->clone());
}

ZBMarkupPage& ZBMarkupPage::operator=(const ZBMarkupPage& other)
{
    if (this != &other) {
        ZBMarkupElement::operator=(other);
        m_title = other.m_title;
        m_body.clear();
        for (const ZBMarkupElement* element : other.m_body)
            m_body.push_back(element->clone());
    }
    return *this;
}

ZBMarkupPage::~ZBMarkupPage() = default;

ZBMarkupElement* ZBMarkupPage::clone() const { return new ZBMarkupPage(*this); }

std::string ZBMarkupPage::get_raw_text() const
{
    std::string text;
    for (const ZBMarkupElement* element : m_body) {
        text += element->get_raw_text();
        if (text.empty() || text.back() != '\n')
            text += '\n';
    }
    return text;
}

int ZBMarkupPage::append(ZBMarkupElement* element)
{
    if (!element)
        return zberror(ZBErrC_NullPointer, ZBLOC, "A page cannot take an empty element.");
    m_body.push_back(element);
    return ZBErrC_ok;
}

int ZBMarkupPage::insert(int index, ZBMarkupElement* element)
{
    if (!element)
        return zberror(ZBErrC_NullPointer, ZBLOC, "A page cannot take an empty element.");
    const int value = m_body.insert(index, element);
    if (iszbwarn(value)) {
        delete element;
        return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

void ZBMarkupPage::add_paragraphs(const std::string& text)
{
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        m_body.push_back(new ZBMarkupParagraph(line));
        start = end + 1;
    }
}

ZBMarkupParagraph* ZBMarkupPage::add_paragraph(const std::string& text, int headerLevel, int indentLevel)
{
    auto* paragraph = new ZBMarkupParagraph(text, headerLevel, indentLevel);
    m_body.push_back(paragraph);
    return paragraph;
}

ZBMarkupElement* ZBMarkupPage::get_element_by_index(int index) const
{
    if (index < 0 || index >= m_body.size()) {
        zberror(ZBErrC_ArrayBounds, ZBLOC, "Element %d of a page of %d.", index, m_body.size());
        return nullptr;
    }
    return m_body[index];
}

bool ZBMarkupPage::same_content(const ZBMarkupElement& other) const
{
    const auto& o = static_cast<const ZBMarkupPage&>(other);
    if (m_title != o.m_title || m_body.size() != o.m_body.size())
        return false;
    for (int i = 0; i < m_body.size(); ++i)
        if (*m_body[i] != *o.m_body[i])
            return false;
    return true;
}

void ZBMarkupPage::dump(std::ostream& out, int indent) const
{
    const std::string pad(size_t(indent), ' ');
    out << pad << "ZBMarkupPage\n";
    ZBMarkupElement::dump(out, indent + 2);
    out << pad << "  m_title: " << m_title << "\n";
    for (const ZBMarkupElement* element : m_body)
        element->dump(out, indent + 4);
}

} // namespace Tervalon
