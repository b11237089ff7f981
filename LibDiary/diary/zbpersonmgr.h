#pragma once

#include "LibDiary/diary/zbdiarymgr.h"

#include <string>
#include <vector>

namespace Tervalon {

class ZBPersonData;
class ZBDPerson;
class ZBDGroup;

// Keeps the people and groups of a diary: lists, names, adding and deleting
// (never while something still refers to them), and contact URLs.
class ZBPersonMgr : public ZBDiaryMgr {
public:
    static const char* const C_DeletePersonTitle;
    static const char* const C_DeleteGroupTitle;
    static int ZBErrC_PersonInUse;

    explicit ZBPersonMgr(ZBDiary& diary);

    ZBPersonData& data() const;

    bool has_user_data() const override;
    int remap_id(int from, int to) override;
    int initialise() override;
    int generate_notify(std::vector<ZBNotifyItem>& out) override;

    int get_npeople() const;
    ZBDPerson* get_person_no(int index) const;
    ZBDPerson* get_person_id(int id) const;
    // The person, locked for editing by the program; null when there is none or it is locked.
    ZBDPerson* edit_person_id(int id) const;
    // Names of every person in list order; with counts, each followed by " (n)" uses.
    std::vector<std::string> get_person_name(bool withCounts) const;
    // The person's name, or empty for an id that is not a person.
    std::string person_name_for_id(int id) const;
    int add_person(ZBDPerson*& out, const std::string& firstName, const std::string& surname, ZBDBObject* parent = nullptr);
    int delete_person(const ZBDPerson& person);
    // How many records name the person (as their person, or as a group member).
    int person_use_count(int id) const;
    const std::string& get_contacturl() const;
    void set_contacturl(const std::string& url);
    int fill_contact_url(const ZBDPerson& person, const std::string& details, std::string& out) const;

    int get_ngroups() const;
    ZBDGroup* get_group_no(int index) const;
    ZBDGroup* get_group_id(int id) const;
    ZBDGroup* edit_group_id(int id) const;
    int add_group(ZBDGroup*& out, const std::string& name);
    int delete_group(const ZBDGroup& group);
    int group_use_count(int id) const;

private:
    // Rebuilds the lists when the database has changed since they were built.
    void refresh() const;
};

} // namespace Tervalon
