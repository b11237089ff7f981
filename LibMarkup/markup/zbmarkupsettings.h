#pragma once

#include "LibCore/ptrarray/zbptrarrayindex.h"
#include "LibMarkup/markup/zbmarkupelement.h"
#include "LibMarkup/markup/zbmarkuppage.h"

#include <string>

namespace Tervalon {

// Named sets of defaults for new elements and new pages, so that a display
// takes its look from one place. set_defaults creates the set cSystem in both
// stores and makes it current.
class ZBMarkupSettings {
public:
    static const char* const cSystem;

    ZBMarkupSettings();
    ZBMarkupSettings(const ZBMarkupSettings& other);
    ZBMarkupSettings& operator=(const ZBMarkupSettings& other);

    void set_defaults(bool all);
    void dump(std::ostream& out, int indent) const;

    // A copy of the look is kept under the name; an existing name is replaced.
    int add_base(const std::string& name, const ZBMarkupElement& base);
    int add_page(const std::string& name, const ZBMarkupPage& page);
    // An unknown name is an error and leaves the current set as it was.
    int use_base(const std::string& name);
    int use_page(const std::string& name);
    const std::string& current_base() const { return _current_base; }
    const std::string& current_page() const { return _current_page; }

    // Copy the current set's look into the element or page.
    void default_base(ZBMarkupElement& element) const;
    void default_page(ZBMarkupPage& page) const;

    int get_nbases() const { return m_base.size(); }
    int get_npages() const { return m_page.size(); }

private:
    ZBPtrArrayIndex<ZBMarkupElement, std::string> m_base;
    ZBPtrArrayIndex<ZBMarkupPage, std::string> m_page;
    std::string _current_base;
    std::string _current_page;
};

} // namespace Tervalon
