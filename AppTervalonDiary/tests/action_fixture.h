#pragma once

#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryactionmgr.h"
#include "AppTervalonDiary/diary/diaryactionparam.h"
#include "AppTervalonDiary/diary/diaryclipboard.h"
#include "AppTervalonDiary/tests/clirun.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Tervalon {
namespace Test {

inline ZBDate at(const std::string& text)
{
    ZBDate date;
    date.from_string(text);
    return date;
}

// A diary on disk, loaded, with a task, an appointment, a journal, a person,
// a folder holding a task, and the manager over it; the clock is fixed.
struct ActionFixture : public ::testing::Test {
    void SetUp() override
    {
        ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00")); // a Monday
        DiaryClipboard::instance().clear();
        recorded.clear();
        DiaryActionMgr::set_url_opener([this](const std::string& url) {
            recorded.push_back(url);
            return true;
        });
        dir = make_temp_dir("actions");
        file = dir + "/d.zbd";
        ASSERT_EQ(tervalon({"create", file}).status, 0);
        ASSERT_FALSE(iszbwarn(diary.load(file, false)));
        task = make(nullptr, 'T', "Task");
        appointment = make(nullptr, 'A', "Meeting");
        journal = make(nullptr, 'J', "Note");
        person = make(nullptr, 'P', "Ann");
        folder = make(nullptr, 'T', "Folder");
        child = make(diary.get_entry_id(folder), 'T', "Child");
        ASSERT_FALSE(iszbwarn(diary.complete_operation("Setup")));
    }
    void TearDown() override
    {
        DiaryActionMgr::set_url_opener(nullptr);
        DiaryClipboard::instance().clear();
        diary.unload();
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }

    int make(DiaryEntry* parent, char type, const std::string& title)
    {
        DiaryEntry* entry = nullptr;
        EXPECT_FALSE(iszbwarn(diary.create_entry(parent, type, title, &entry)));
        return entry ? entry->get_id() : -1;
    }
    DiaryEntry* entry(int id) { return diary.get_entry_id(id); }
    DiaryActionParam select(std::vector<ZBId> ids)
    {
        DiaryActionParam param;
        for (const ZBId& id : ids)
            param.m_selectedId.add(id);
        return param;
    }
    // The reason the manager gives, or "ok" when it would run.
    std::string why(const std::string& name, const DiaryActionParam& param)
    {
        std::string reason;
        return manager.is_available(name, param, reason) ? std::string("ok") : reason;
    }
    // Runs and gives the result as ok or the message of the refusal.
    std::string run(const std::string& name, const DiaryActionParam& param)
    {
        const int result = manager.run_action(name, param);
        std::string text = "ok";
        if (iszbwarn(result)) {
            const ZBErrDetails* top = get_zberror().top();
            text = top ? top->get_details(ZBErrAsp_User) : std::string("failed");
        }
        get_zberror().clear_all();
        return text;
    }

    std::string dir;
    std::string file;
    Diary diary;
    DiaryActionMgr manager{&diary};
    std::vector<std::string> recorded;
    int task = -1, appointment = -1, journal = -1, person = -1, folder = -1, child = -1;
};

} // namespace Test
} // namespace Tervalon
