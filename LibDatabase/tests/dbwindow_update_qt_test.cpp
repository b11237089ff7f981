#include "LibDatabase/tests/dbwindow_qt_support.h"
#include "LibDatabase/qt/zbdbsettingsformqt.h"

#include <QCheckBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>

using namespace Tervalon;
using namespace Tervalon::Test;

namespace {

// A window on a loaded file whose heartbeat reads a clock the test moves.
struct ClockedWindow {
    explicit ClockedWindow(const std::string& file) : window(new ZBDatabase())
    {
        window.set_clock([this]() { return now; });
        EXPECT_EQ(window.do_load(file, std::string(), ZBDBManagerQt::E_LoadPlain), ZBErrC_ok);
    }
    long long now = 1000000;
    ZBDBManagerQt window;
};

} // namespace

TEST_F(DBWindowQt, AfterALongGapTheUpdateRunsEvenWhenMinimisedOrEditing)
{
    const std::string file = path("gap.zbd");
    int a = -1;
    make_file(file, &a);
    ClockedWindow clocked(file);
    ZBDBManagerQt& window = clocked.window;
    const int afterLoad = window.get_nupdates();
    EXPECT_EQ(afterLoad, 1);
    window.showMinimized();
    ASSERT_TRUE(window.isMinimized());
    struct Row {
        long long gap;
        bool editing;
        bool runs;
    };
    const Row rows[] = {
        {1, false, false},
        {600, false, false},
        {601, false, true},
        {30, true, false},
        {601, true, true},
    };
    for (const Row& row : rows) {
        if (row.editing)
            ASSERT_EQ(window.get_database()->edit_object(a, false), ZBErrC_ok);
        clocked.now = window.get_last_update() + row.gap;
        const int before = window.get_nupdates();
        window.do_periodic_update();
        EXPECT_EQ(window.get_nupdates() - before, row.runs ? 1 : 0) << row.gap << (row.editing ? " editing" : "");
        if (row.editing)
            window.get_database()->revert_object(a);
    }
}

TEST_F(DBWindowQt, TheRecalculationLevelFollowsIdlenessChangesAndTheDetailTimer)
{
    const std::string file = path("levels.zbd");
    int a = -1;
    make_file(file, &a);
    ClockedWindow clocked(file);
    ZBDBManagerQt& window = clocked.window;
    // The first update after a load is the full one, and starts the detail timer.
    EXPECT_EQ(window.get_last_recalc_level(), ZBDatabase::E_RecalcFull);
    EXPECT_TRUE(window.get_detail_timer()->isActive());
    window.do_periodic_update();
    EXPECT_EQ(window.get_last_recalc_level(), ZBDatabase::E_RecalcNone);
    ASSERT_EQ(set_x(*window.get_database(), a, "5", "Change"), ZBErrC_ok);
    window.do_periodic_update();
    EXPECT_EQ(window.get_last_recalc_level(), ZBDatabase::E_RecalcQuick);
    // A change stops the detail timer; once the user is idle the detail pass is due.
    EXPECT_FALSE(window.get_detail_timer()->isActive());
    window.mark_interact();
    window.do_periodic_update();
    EXPECT_EQ(window.get_last_recalc_level(), ZBDatabase::E_RecalcNone);
    window.get_interaction_timer()->stop();
    window.do_periodic_update();
    EXPECT_EQ(window.get_last_recalc_level(), ZBDatabase::E_RecalcFull);
    // Asked for, the detail pass runs even while the user is busy.
    window.mark_interact();
    window.trigger_detail_calculate();
    window.do_periodic_update();
    EXPECT_EQ(window.get_last_recalc_level(), ZBDatabase::E_RecalcFull);
    // A paused window does nothing at all.
    window.set_pause(true);
    const int before = window.get_nupdates();
    window.do_periodic_update();
    EXPECT_EQ(window.get_nupdates(), before);
}

TEST_F(DBWindowQt, OnlyTheFirstHundredCheckFindingsBecomeNotifications)
{
    const std::string file = path("checks.zbd");
    make_file(file);
    ClockedWindow clocked(file);
    ZBDBManagerQt& window = clocked.window;
    for (int id = 1; id <= 150; ++id)
        window.get_database()->get_checker().record_error(id, 1, "Finding " + std::to_string(id), "F" + std::to_string(id));
    window.do_periodic_update();
    const std::vector<ZBNotifyItem>& items = window.get_notify_list().get_items();
    ASSERT_EQ(items.size(), 100u);
    EXPECT_EQ(items.front().get_text(), "F1");
    EXPECT_EQ(items.back().get_text(), "F100");
    EXPECT_EQ(items.front().get_scheme(), ZBDBManagerQt::C_NotifySystem);
}

TEST_F(DBWindowQt, AutosaveWaitsForTheUserToBeIdle)
{
    const std::string file = path("idle.zbd");
    int a = -1;
    make_file(file, &a);
    ClockedWindow clocked(file);
    ZBDBManagerQt& window = clocked.window;
    ASSERT_EQ(set_x(*window.get_database(), a, "7", "Busy"), ZBErrC_ok);
    window.mark_interact();
    window.do_periodic_update();
    EXPECT_TRUE(window.get_database()->needs_save());
    window.get_interaction_timer()->stop();
    window.do_periodic_update();
    EXPECT_FALSE(window.get_database()->needs_save());
    ZBDatabase again;
    ASSERT_EQ(again.read(file), ZBErrC_ok);
    EXPECT_EQ(x_of(again, a), "7");
}

TEST_F(DBWindowQt, ClosingWithUnsavedChangesAsksAndOnlyDiscardDropsThem)
{
    struct Row {
        const char* answer;
        bool closed;
        const char* onDisk;
    };
    const Row rows[] = {
        {"Cancel", false, "0"},
        {"Discard", true, "0"},
        {"Save", true, "9"},
    };
    for (const Row& row : rows) {
        const std::string file = path(std::string("close ") + row.answer + ".zbd");
        int a = -1;
        make_file(file, &a);
        ZBDBManagerQt window(new ZBDatabase());
        ASSERT_EQ(window.do_load(file, std::string(), ZBDBManagerQt::E_LoadPlain), ZBErrC_ok);
        window.show();
        window.get_database()->set_autosave(false);
        ASSERT_EQ(set_x(*window.get_database(), a, "9", "Change"), ZBErrC_ok);
        EXPECT_FALSE(window.close()) << row.answer;
        ZBMessageBoxQt* box = find_box("Save");
        ASSERT_NE(box, nullptr) << row.answer;
        EXPECT_EQ(box_text(box), "close " + std::string(row.answer) + ".zbd has changes and needs to be saved.");
        EXPECT_EQ(captions(box), (std::vector<std::string>{"Save", "Discard", "Cancel"}));
        // While the question waits, closing again does nothing.
        EXPECT_FALSE(window.close());
        press(box, row.answer);
        EXPECT_EQ(window.isVisible(), !row.closed) << row.answer;
        EXPECT_EQ(window.is_loaded(), !row.closed) << row.answer;
        ZBDatabase again;
        ASSERT_EQ(again.read(file), ZBErrC_ok);
        EXPECT_EQ(x_of(again, a), row.onDisk) << row.answer;
    }
}

TEST_F(DBWindowQt, UndoAndRedoAskNamingTheStep)
{
    const std::string file = path("undo.zbd");
    int a = -1;
    make_file(file, &a);
    ZBDBManagerQt window(new ZBDatabase());
    ASSERT_EQ(window.do_load(file, std::string(), ZBDBManagerQt::E_LoadPlain), ZBErrC_ok);
    ASSERT_EQ(set_x(*window.get_database(), a, "4", "Set Four"), ZBErrC_ok);
    window.undo_selected();
    ZBMessageBoxQt* box = find_box("Undo");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box_text(box), "Undo Set Four?");
    press(box, "No");
    EXPECT_EQ(x_of(*window.get_database(), a), "4");
    window.undo_selected();
    press(find_box("Undo"), "Yes");
    EXPECT_EQ(x_of(*window.get_database(), a), "0");
    window.redo_selected();
    box = find_box("Redo");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box_text(box), "Redo Set Four?");
    press(box, "Yes");
    EXPECT_EQ(x_of(*window.get_database(), a), "4");
}

TEST_F(DBWindowQt, TheSettingsPageWritesBackOnlyWhenRead)
{
    const std::string file = path("settings.zbd");
    make_file(file);
    ZBDBManagerQt window(new ZBDatabase());
    ASSERT_EQ(window.do_load(file, std::string(), ZBDBManagerQt::E_LoadPlain), ZBErrC_ok);
    ZBDatabase& db = *window.get_database();
    db.set_autosave(true);
    ZBDBSettingsFormQt form(db, &window);
    form.get_backups()->setValue(3);
    form.get_autosave()->setChecked(false);
    EXPECT_TRUE(db.get_autosave());
    ASSERT_EQ(form.read_form(), ZBErrC_ok);
    EXPECT_EQ(db.get_backup_count(), 3);
    EXPECT_FALSE(db.get_autosave());
    // A snapshot taken from the page lands among the backups, and the user is told.
    form.findChild<QPushButton*>("takeSnapshot")->click();
    ZBMessageBoxQt* box = find_box("Snapshot Taken");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box_text(box),
              "Snapshot taken.   Next time you save your file, this snapshot will be in the snapshot list.");
    press(box, "Ok");
    EXPECT_FALSE(ZBDatabase::list_snapshots(file).empty());
}

TEST_F(DBWindowQt, ClosingWithAutosaveOnSavesWithoutAsking)
{
    const std::string file = path("autosave close.zbd");
    int a = -1;
    make_file(file, &a);
    ZBDBManagerQt window(new ZBDatabase());
    ASSERT_EQ(window.do_load(file, std::string(), ZBDBManagerQt::E_LoadPlain), ZBErrC_ok);
    window.show();
    window.get_database()->set_autosave(true);
    ASSERT_EQ(set_x(*window.get_database(), a, "3", "Change"), ZBErrC_ok);
    EXPECT_TRUE(window.close());
    EXPECT_EQ(find_box(""), nullptr);
    EXPECT_FALSE(window.is_loaded());
    ZBDatabase again;
    ASSERT_EQ(again.read(file), ZBErrC_ok);
    EXPECT_EQ(x_of(again, a), "3");
}
