#pragma once

#include "LibMarkup/markup/zbmarkupelement.h"

namespace Tervalon {

// A picture by name: a file path, a URL, or ":image/..." for one built into
// the program.
class ZBMarkupImage : public ZBMarkupElement {
public:
    explicit ZBMarkupImage(const std::string& imageName = std::string());

    ZBMarkupElement* clone() const override;
    // Pictures have no words: text output leaves them out.
    std::string get_raw_text() const override;
    void dump(std::ostream& out, int indent) const override;

    const std::string& get_image_name() const { return m_imageName; }
    void set_image_name(const std::string& name) { m_imageName = name; }

    std::string m_imageName;

protected:
    bool same_content(const ZBMarkupElement& other) const override;
};

} // namespace Tervalon
