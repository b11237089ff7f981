#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"

#include <string>
#include <vector>

namespace Tervalon {

// What an entry waits for, by id and by title, and how it takes part in its
// ancestors' dependencies.
class EntryDepend : public EntryFacet {
public:
    EntryDepend();
    EntryDepend(const EntryDepend& other) = default;
    EntryDepend& operator=(const EntryDepend& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    static const char C_DependSeparator = ';';

    const std::vector<int>& get_depend_ids() const { return m_dependId; }
    void set_depend_ids(const std::vector<int>& ids) { m_dependId = ids; }
    const std::vector<std::string>& get_depend_titles() const { return m_dependTitle; }
    void set_depend_titles(const std::vector<std::string>& titles) { m_dependTitle = titles; }
    void clear_depends()
    {
        m_dependId.clear();
        m_dependTitle.clear();
    }
    bool get_prevent_others() const { return m_preventOthers; }
    void set_prevent_others(bool on) { m_preventOthers = on; }
    bool get_prevent_depend() const { return m_preventDepend; }
    void set_prevent_depend(bool on) { m_preventDepend = on; }
    int get_active_depends() const { return m_activeDepends; }
    void set_active_depends(int count) { m_activeDepends = count; }
    const std::vector<int>& get_depend_on_this() const { return m_dependOnThis; }
    std::vector<int>& edit_depend_on_this() { return m_dependOnThis; }

private:
    std::vector<int> m_dependId;
    std::vector<std::string> m_dependTitle;
    bool m_preventOthers;
    bool m_preventDepend;
    int m_activeDepends;
    std::vector<int> m_dependOnThis;
};

} // namespace Tervalon
