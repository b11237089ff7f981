#include "LibMarkup/markup/zbmarkupimage.h"

#include <ostream>

namespace Tervalon {

ZBMarkupImage::ZBMarkupImage(const std::string& imageName) : m_imageName(imageName) {}

ZBMarkupElement* ZBMarkupImage::clone() const { return new ZBMarkupImage(*this); }

std::string ZBMarkupImage::get_raw_text() const { return std::string(); }

bool ZBMarkupImage::same_content(const ZBMarkupElement& other) const
{
    return m_imageName == static_cast<const ZBMarkupImage&>(other).m_imageName;
}

void ZBMarkupImage::dump(std::ostream& out, int indent) const
{
    const std::string pad(size_t(indent), ' ');
    out << pad << "ZBMarkupImage\n";
    ZBMarkupElement::dump(out, indent + 2);
    out << pad << "  m_imageName: " << m_imageName << "\n";
}

} // namespace Tervalon
