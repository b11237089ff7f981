#include "LibGui/base/zbactionmgr.h"
#include "LibGui/base/zbactionparam.h"
#include "LibGui/qt/zbactionmapperqt.h"
#include "LibGui/qt/zbdialogqt.h"
#include "LibGui/qt/zbmessageboxqt.h"
#include "LibGui/qt/zbwindowqt.h"
#include "LibCore/param/zbparam.h"
#include "tests/support/testsupport.h"

#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

// A parameter store of its own per test, so saved window state starts empty.
class WindowState : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_config = Tervalon::Test::make_temp_dir("window_state") + "/test.cfg";
        ZBParam* param = new ZBParam();
        set_zbparam(param);
        param->add_config_file(m_config);
        get_zberror().clear_all();
    }
    std::string m_config;
};

class CountingDialog : public ZBDialogQt {
public:
    int update_data() override { ++m_data; return ZBErrC_ok; }
    int update_display() override { ++m_display; return ZBErrC_ok; }
    int update_controls() override { ++m_controls; return ZBErrC_ok; }
    bool update_data_needed() override { return m_needed; }
    int validate_display() override { return m_valid ? ZBErrC_ok : zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Bad"); }
    int m_data = 0, m_display = 0, m_controls = 0;
    bool m_needed = false;
    bool m_valid = true;
};

class ShortManager : public ZBActionMgr {
public:
    bool is_available(const std::string& name, const ZBId& id, const ZBActionParam&, std::string& reason) override
    {
        m_lastName = name;
        m_lastId = id.m_id;
        if (m_open)
            return true;
        reason = "Nothing is selected.";
        return false;
    }
    bool m_open = false;
    std::string m_lastName;
    int m_lastId = 0;
};

std::string cfg_value(const std::string& key)
{
    return zbparam().get_system_value(key);
}

} // namespace

TEST(MessageBoxQt, KeyNAndEscBothPressTheNoButton)
{
    for (int key : {int(Qt::Key_N), int(Qt::Key_Escape)}) {
        QPointer<ZBMessageBoxQt> box = ZBMessageBoxQt::start(ZBIdList(), "deleteAsk", "Delete", "Delete the entry?",
                                                             ZBMessageBoxQt::E_Question, ZBMessageBox::C_Yes,
                                                             ZBMessageBox::C_No);
        QSignalSpy spy(box.data(), &ZBMessageBoxQt::sig_complete_key);
        QApplication::setActiveWindow(box);
        ASSERT_TRUE(QTest::qWaitForWindowActive(box));
        EXPECT_EQ(box->get_button("No")->text(), "No");
        QTest::keyClick(box.data(), Qt::Key(key));
        // A shortcut press animates the button, which clicks a moment later.
        for (int i = 0; i < 100 && spy.count() == 0; ++i)
            QTest::qWait(10);
        ASSERT_EQ(spy.count(), 1) << "key " << key;
        EXPECT_EQ(spy[0][0].toString(), "No");
        EXPECT_EQ(spy[0][1].toString(), "deleteAsk");
        QTest::qWait(0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(box.isNull()) << "the box deletes itself once answered";
    }
}

TEST(MessageBoxQt, AnswersCarryTheIdOrTheIdList)
{
    ZBIdList one;
    one.add(ZBId(42));
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(one, "", "t", "x", ZBMessageBoxQt::E_NoIcon, ZBMessageBox::C_Ok);
    QSignalSpy idSpy(box, &ZBMessageBoxQt::sig_complete_id);
    box->get_button("Ok")->click();
    ASSERT_EQ(idSpy.count(), 1);
    EXPECT_EQ(idSpy[0][1].toInt(), 42);

    ZBIdList two;
    two.add(ZBId(1));
    two.add(ZBId(2));
    box = ZBMessageBoxQt::start(two, "", "t", "x", ZBMessageBoxQt::E_NoIcon, "Keep#Default", ZBMessageBox::C_Delete);
    int seen = 0;
    QObject::connect(box, &ZBMessageBoxQt::sig_complete_idlist, [&](const QString& key, const ZBIdList& ids) {
        EXPECT_EQ(key, "Delete");
        seen = ids.size();
    });
    box->get_button("Delete")->click();
    EXPECT_EQ(seen, 2);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(MessageBoxQt, DetailsShowInPlaceAndTheBoxStaysOpen)
{
    QPointer<ZBMessageBoxQt> box = ZBMessageBoxQt::start(ZBIdList(), "k", "Save failed", "The file was not saved.",
                                                         ZBMessageBoxQt::E_Warning, ZBMessageBox::C_Ok, QString(),
                                                         QString(), QString(), "disk full at line 3");
    QSignalSpy spy(box.data(), &ZBMessageBoxQt::sig_complete_key);
    ASSERT_NE(box->get_button("Details"), nullptr);
    EXPECT_FALSE(box->get_details()->isVisible());
    box->get_button("Details")->click();
    EXPECT_TRUE(box->get_details()->isVisible());
    EXPECT_EQ(box->get_details()->toPlainText(), "disk full at line 3");
    EXPECT_TRUE(box->isVisible());
    EXPECT_EQ(spy.count(), 0);
    box->get_button("Details")->click();
    EXPECT_FALSE(box->get_details()->isVisible());
    // Esc with a single real button presses it.
    QTest::keyClick(box.data(), Qt::Key_Escape);
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy[0][0].toString(), "Ok");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(MessageBoxQt, EmptyDescriptionHidesTheButton)
{
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(ZBIdList(), "", "t", "x", ZBMessageBoxQt::E_NoIcon, "", "Go#Default");
    EXPECT_TRUE(box->get_button(0)->isHidden());
    EXPECT_TRUE(box->get_button(1)->isDefault());
    box->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(ActionMapperQt, UnavailableTipIsAddedOnceAndTakenAway)
{
    ShortManager manager;
    ZBActionMapperQt mapper;
    ZBActionParam param;
    QAction remove("Delete");
    remove.setToolTip("Delete the entry");
    remove.setStatusTip("Delete the selected entry");

    std::string reason;
    EXPECT_FALSE(mapper.is_available(&remove, 1, param, reason));
    EXPECT_EQ(reason, "No action manager set.");
    mapper.initialise(manager);
    EXPECT_FALSE(mapper.is_available(&remove, 1, param, reason));
    EXPECT_EQ(reason, "Could not find the action.");

    mapper.add_action("actionDelete", &remove);
    mapper.enable_action(&remove, 7, param);
    mapper.enable_action(&remove, 7, param);
    EXPECT_EQ(manager.m_lastName, "actionDelete");
    EXPECT_EQ(manager.m_lastId, 7);
    EXPECT_FALSE(remove.isEnabled());
    EXPECT_EQ(remove.toolTip(), "Delete the entry - Unavailable: Nothing is selected.");
    EXPECT_EQ(remove.statusTip(), "Delete the selected entry - Unavailable: Nothing is selected.");

    manager.m_open = true;
    mapper.enable_action(&remove, 7, param);
    EXPECT_TRUE(remove.isEnabled());
    EXPECT_EQ(remove.toolTip(), "Delete the entry");
    EXPECT_EQ(remove.statusTip(), "Delete the selected entry");

    mapper.enable_action(&remove, 7, param, true, "The file is read only.");
    EXPECT_EQ(remove.toolTip(), "Delete the entry - Unavailable: The file is read only.");

    ZBWindowQt::disable_control(&remove, "Busy.");
    ZBWindowQt::disable_control(&remove, "Busy.");
    EXPECT_EQ(remove.toolTip(), "Delete the entry - Unavailable: Busy.");
    ZBWindowQt::enable_control(&remove);
    EXPECT_EQ(remove.toolTip(), "Delete the entry");
    EXPECT_TRUE(remove.isEnabled());
}

TEST_F(WindowState, ColumnsAreSavedWithTrailingCommasAndRestored)
{
    QWidget window;
    window.setObjectName("mainWin");
    QTreeWidget* tree = new QTreeWidget(&window);
    tree->setObjectName("entryTree");
    tree->setColumnCount(3);
    tree->header()->setStretchLastSection(false);
    tree->header()->resizeSection(0, 120);
    tree->header()->resizeSection(1, 80);
    tree->header()->resizeSection(2, 200);
    ASSERT_FALSE(iszbwarn(ZBWindowQt::store_columns(tree)));
    EXPECT_EQ(cfg_value("mainWin.entryTree.columns"), "120,80,200,");

    QWidget other;
    other.setObjectName("mainWin");
    QTreeWidget* fresh = new QTreeWidget(&other);
    fresh->setObjectName("entryTree");
    fresh->setColumnCount(3);
    ZBWindowQt::restore_columns(fresh);
    EXPECT_EQ(fresh->header()->sectionSize(0), 120);
    EXPECT_EQ(fresh->header()->sectionSize(1), 80);

    // Fewer widths than columns, a damaged width, and more widths than columns.
    zbparam().set_system_value("mainWin.entryTree.columns", "150,x,");
    ZBWindowQt::restore_columns(fresh);
    EXPECT_EQ(fresh->header()->sectionSize(0), 150);
    EXPECT_EQ(fresh->header()->sectionSize(1), 80);
    zbparam().set_system_value("mainWin.entryTree.columns", "90,91,92,93,94,");
    ZBWindowQt::restore_columns(fresh);
    EXPECT_EQ(fresh->header()->sectionSize(1), 91);
}

TEST_F(WindowState, UnchangedStateIsNotWrittenAgain)
{
    QWidget window;
    window.setObjectName("mainWin");
    QTreeWidget* tree = new QTreeWidget(&window);
    tree->setObjectName("entryTree");
    tree->setColumnCount(2);
    ASSERT_FALSE(iszbwarn(ZBWindowQt::store_columns(tree)));
    ASSERT_TRUE(Tervalon::Test::file_exists(m_config));
    std::remove(m_config.c_str());
    ZBWindowQt::store_columns(tree);
    EXPECT_FALSE(Tervalon::Test::file_exists(m_config));
    tree->header()->resizeSection(0, 33);
    ZBWindowQt::store_columns(tree);
    EXPECT_TRUE(Tervalon::Test::file_exists(m_config));
}

TEST_F(WindowState, GeometryFromALargerScreenIsClampedOntoThisOne)
{
    struct Case { int x, y, w, h; QRect screen; QPoint pos; QSize size; };
    const Case cases[] = {
        {3000, 2000, 2500, 1500, QRect(0, 0, 1280, 800), QPoint(0, 0), QSize(1280, 800)},
        {100, 50, 400, 300, QRect(0, 0, 1280, 800), QPoint(100, 50), QSize(400, 300)},
        {-40, 700, 400, 300, QRect(0, 0, 1280, 800), QPoint(0, 0), QSize(400, 300)},
        {1000, 10, 400, 300, QRect(0, 0, 1280, 800), QPoint(0, 10), QSize(400, 300)},
        {10, 10, 400, 300, QRect(1920, 0, 1280, 800), QPoint(1920, 10), QSize(400, 300)},
    };
    for (const Case& c : cases) {
        QWidget window;
        window.setObjectName("editDialog");
        zbparam().set_system_value("editDialog.x", c.x);
        zbparam().set_system_value("editDialog.y", c.y);
        zbparam().set_system_value("editDialog.width", c.w);
        zbparam().set_system_value("editDialog.height", c.h);
        zbparam().set_system_value("editDialog.max", 0);
        ASSERT_FALSE(iszbwarn(ZBWindowQt::restore_geometry(&window, c.screen)));
        EXPECT_EQ(window.pos(), c.pos) << c.x << "," << c.y;
        EXPECT_EQ(window.size(), c.size) << c.w << "x" << c.h;
    }
    QWidget fresh;
    fresh.setObjectName("neverSaved");
    EXPECT_EQ(ZBWindowQt::restore_geometry(&fresh, QRect(0, 0, 800, 600)), ZBErrC_okCancel);
    zbparam().set_system_value("neverSaved.max", 1);
    ZBWindowQt::restore_geometry(&fresh, QRect(0, 0, 800, 600));
    EXPECT_TRUE(fresh.windowState() & Qt::WindowMaximized);
}

TEST_F(WindowState, GeometryIsStoredUnderTheObjectName)
{
    QWidget window;
    window.setObjectName("editDialog");
    window.resize(420, 310);
    window.move(30, 40);
    ASSERT_FALSE(iszbwarn(ZBWindowQt::store_geometry(&window)));
    EXPECT_EQ(cfg_value("editDialog.x"), "30");
    EXPECT_EQ(cfg_value("editDialog.width"), std::to_string(window.frameGeometry().width()));
    EXPECT_EQ(cfg_value("editDialog.max"), "0");
}

TEST_F(WindowState, ATabThatNoLongerExistsLeavesTheCurrentOne)
{
    QWidget window;
    window.setObjectName("mainWin");
    QTabWidget* tabs = new QTabWidget(&window);
    tabs->setObjectName("mainTab");
    for (const char* name : {"treeTab", "dayTab", "weekTab"}) {
        QWidget* page = new QWidget;
        page->setObjectName(name);
        tabs->addTab(page, name);
    }
    tabs->setCurrentIndex(1);
    ZBWindowQt::store_tab(tabs);
    EXPECT_EQ(cfg_value("mainWin.mainTab.selectedTab"), "dayTab");
    tabs->setCurrentIndex(2);
    EXPECT_EQ(ZBWindowQt::restore_tab(tabs), ZBErrC_ok);
    EXPECT_EQ(tabs->currentIndex(), 1);
    zbparam().set_system_value("mainWin.mainTab.selectedTab", "goneTab");
    EXPECT_EQ(ZBWindowQt::restore_tab(tabs), ZBErrC_okCancel);
    EXPECT_EQ(tabs->currentIndex(), 1);
}

TEST(WindowQt, ThreeDelayedRequestsGiveOneUpdate)
{
    CountingDialog dialog;
    dialog.delayed_update_display();
    QTest::qWait(20);
    dialog.delayed_update_display();
    dialog.delayed_update_display();
    EXPECT_EQ(dialog.m_display, 0);
    EXPECT_TRUE(dialog.is_update_pending());
    for (int i = 0; i < 200 && dialog.is_update_pending(); ++i)
        QTest::qWait(10);
    QTest::qWait(150);
    EXPECT_EQ(dialog.m_display, 1);
}

TEST(WindowQt, RequestsFollowWhetherDataIsNeeded)
{
    CountingDialog dialog;
    dialog.m_needed = false;
    EXPECT_FALSE(iszbwarn(dialog.request_update_display(false)));
    EXPECT_EQ(dialog.m_display + dialog.m_data, 0);
    dialog.request_update_display(true);
    EXPECT_EQ(dialog.m_display, 1);
    dialog.request_update_controls(true);
    EXPECT_EQ(dialog.m_controls, 1);
    EXPECT_EQ(dialog.m_data, 0);
    dialog.m_needed = true;
    dialog.request_update_display(false);
    dialog.request_update_controls(false);
    EXPECT_EQ(dialog.m_data, 2);
    EXPECT_EQ(dialog.m_display, 1);
}

TEST(DialogQt, CtrlReturnAcceptsOnlyWhatIsValid)
{
    CountingDialog dialog;
    dialog.set_restore_geom(false);
    QSignalSpy accepted(&dialog, &ZBDialogQt::accept_dialog);
    dialog.m_valid = false;
    dialog.show_dialog();
    EXPECT_EQ(dialog.m_data, 1);
    EXPECT_EQ(dialog.m_controls, 1);
    QTest::keyClick(&dialog, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(accepted.count(), 1);
    EXPECT_TRUE(dialog.isVisible());
    get_zberror().clear_all();
    dialog.m_valid = true;
    QTest::keyClick(&dialog, Qt::Key_Enter, Qt::ControlModifier);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}
