#include "LibMarkup/markup/zbmarkupparagraph.h"

#include "LibCore/error/zberror.h"

#include <ostream>

namespace Tervalon {

namespace {

// The array's own copy would slice the elements; each one copies itself.
void clone_elements(ZBPtrArray<ZBMarkupElement>& to, const ZBPtrArray<ZBMarkupElement>& from)
{
    to.clear();
    to.reserve(from.size());
    for (const ZBMarkupElement* element : from)
        to.push_back(element->clone());
}

} // namespace

ZBMarkupParagraph::ZBMarkupParagraph(const std::string& text, int headerLevel, int indentLevel)
    : m_headerLevel(headerLevel), m_indentLevel(indentLevel)
{
    if (!text.empty())
        m_element.push_back(new ZBMarkupTextElement(text));
}

ZBMarkupParagraph::ZBMarkupParagraph(const ZBMarkupParagraph& other)
    : ZBMarkupElement(other), m_headerLevel(other.m_headerLevel), m_indentLevel(other.m_indentLevel)
{
    clone_elements(m_element, other.m_element);
}

ZBMarkupParagraph& ZBMarkupParagraph::operator=(const ZBMarkupParagraph& other)
{
    if (this != &other) {
        ZBMarkupElement::operator=(other);
        m_headerLevel = other.m_headerLevel;
        m_indentLevel = other.m_indentLevel;
        clone_elements(m_element, other.m_element);
    }
    return *this;
}

ZBMarkupParagraph::~ZBMarkupParagraph() = default;

ZBMarkupElement* ZBMarkupParagraph::clone() const { return new ZBMarkupParagraph(*this); }

std::string ZBMarkupParagraph::get_raw_text() const
{
    std::string text;
    for (const ZBMarkupElement* element : m_element)
        text += element->get_raw_text();
    return text;
}

int ZBMarkupParagraph::add_element(ZBMarkupElement* element)
{
    if (!element)
        return zberror(ZBErrC_NullPointer, ZBLOC, "A paragraph cannot take an empty element.");
    m_element.push_back(element);
    return ZBErrC_ok;
}

ZBMarkupTextElement* ZBMarkupParagraph::add_text(const std::string& text, bool preformatted)
{
    auto* element = new ZBMarkupTextElement(text, preformatted);
    m_element.push_back(element);
    return element;
}

int ZBMarkupParagraph::insert_element(ZBMarkupElement* element, int index)
{
    if (!element)
        return zberror(ZBErrC_NullPointer, ZBLOC, "A paragraph cannot take an empty element.");
    const int value = m_element.insert(index, element);
    if (iszbwarn(value)) {
        delete element;
        return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

ZBMarkupElement* ZBMarkupParagraph::get_element_by_index(int index) const
{
    if (index < 0 || index >= m_element.size()) {
        zberror(ZBErrC_ArrayBounds, ZBLOC, "Element %d of a paragraph of %d.", index, m_element.size());
        return nullptr;
    }
    return m_element[index];
}

bool ZBMarkupParagraph::same_content(const ZBMarkupElement& other) const
{
    const auto& o = static_cast<const ZBMarkupParagraph&>(other);
    if (m_headerLevel != o.m_headerLevel || m_indentLevel != o.m_indentLevel ||
        m_element.size() != o.m_element.size())
        return false;
    for (int i = 0; i < m_element.size(); ++i)
        if (*m_element[i] != *o.m_element[i])
            return false;
    return true;
}

void ZBMarkupParagraph::dump(std::ostream& out, int indent) const
{
    const std::string pad(size_t(indent), ' ');
    out << pad << "ZBMarkupParagraph\n";
    ZBMarkupElement::dump(out, indent + 2);
    out << pad << "  m_headerLevel: " << m_headerLevel << "\n" << pad << "  m_indentLevel: " << m_indentLevel << "\n";
    for (const ZBMarkupElement* element : m_element)
        element->dump(out, indent + 4);
}

} // namespace Tervalon
