#include "LibGui/qt/zbnotifybarqt.h"
#include "LibGui/qt/zbnotifydesktopqt.h"
#include "LibGui/qt/zbnotifydialogqt.h"
#include "LibGui/qt/zbnotifylistqt.h"
#include "LibGui/qt/zbnotifysettingsqt.h"
#include "LibGui/qt/zbformitemqt.h"
#include "LibGui/qt/zbtreewidgetqt.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

// Stands in for the desktop's notification service.
class RecordingDesktop : public ZBNotifyDesktopQt {
public:
    explicit RecordingDesktop(bool available, std::vector<QString>* sent) : m_available(available), m_sent(sent) {}
    bool is_available() override { return m_available; }
    void notify(const QString& title, const QString& message, const QString&) override
    {
        m_sent->push_back(title + ": " + message);
    }

private:
    bool m_available;
    std::vector<QString>* m_sent;
};

// A main window with the bar above a text field, as a database window has it.
class NotifyWidgets : public ::testing::Test {
protected:
    void SetUp() override
    {
        ZBParam* param = new ZBParam();
        set_zbparam(param);
        param->add_config_file(Tervalon::Test::make_temp_dir("notify_widgets") + "/test.cfg");
        get_zberror().clear_all();
        m_window.setObjectName("mainWin");
        QWidget* central = new QWidget;
        QVBoxLayout* layout = new QVBoxLayout(central);
        m_bar = new ZBNotifyBarQt;
        m_edit = new QLineEdit;
        layout->addWidget(m_bar);
        layout->addWidget(m_edit);
        layout->addStretch(1);
        m_window.setCentralWidget(central);
        m_window.resize(800, 600);
    }

    void start(bool desktop = true)
    {
        m_list.initialise(m_bar->get_tree(), &m_window, m_bar,
                          std::unique_ptr<ZBNotifyDesktopQt>(new RecordingDesktop(desktop, &m_sent)));
        m_list.add_scheme(new ZBNotifyScheme(900, "Overdue", 100, std::string(), true, {100, 40, 40}));
        m_list.add_scheme(new ZBNotifyScheme(600, "Urgent", 80));
        m_list.add_scheme(new ZBNotifyScheme(300, "Late tasks", 40));
        m_list.add_scheme(new ZBNotifyScheme(200, "Quiet", 20));
    }

    void round(const std::vector<ZBNotifyItem>& items)
    {
        m_list.reset();
        for (const ZBNotifyItem& item : items)
            m_list.add(item);
        m_list.update();
    }

    static std::vector<ZBNotifyItem> rows(int n, int scheme = 300)
    {
        std::vector<ZBNotifyItem> items;
        for (int i = 0; i < n; ++i)
            items.emplace_back(scheme, 10.0, "Late: task " + std::to_string(i), i + 1, ZBDate(ZBDate::E_Blank));
        return items;
    }

    void show_and_focus()
    {
        m_window.show();
        m_window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
        m_edit->setFocus();
        QApplication::processEvents();
    }

    QMainWindow m_window;
    ZBNotifyBarQt* m_bar = nullptr;
    QLineEdit* m_edit = nullptr;
    ZBNotifyListQt m_list;
    std::vector<QString> m_sent;
};

} // namespace

TEST_F(NotifyWidgets, TheBarHidesWhenEmptyShowsOneRowAndExpandsToHalfTheWindowAtMost)
{
    start();
    m_window.show();
    round({});
    EXPECT_TRUE(m_bar->isHidden());

    round(rows(1));
    ASSERT_FALSE(m_bar->isHidden());
    const int oneRow = m_bar->height();
    const int rowHeight = m_bar->get_tree()->sizeHintForRow(0);
    ASSERT_GT(rowHeight, 0);
    // One row and its frame: not a pixel of a second row.
    EXPECT_EQ(oneRow, rowHeight + 2 * m_bar->get_tree()->frameWidth());
    EXPECT_FALSE(m_bar->get_expand_button()->isEnabled());

    round(rows(3));
    EXPECT_EQ(m_bar->height(), oneRow);
    EXPECT_EQ(m_bar->get_expand_button()->text(), "2 more");
    m_bar->get_expand_button()->click();
    EXPECT_TRUE(m_bar->is_expanded());
    EXPECT_EQ(m_bar->height(), 3 * rowHeight + 2 * m_bar->get_tree()->frameWidth());
    EXPECT_LE(m_bar->height(), m_window.height() / 2);

    round(rows(200));
    EXPECT_LE(m_bar->height(), m_window.height() / 2);
    EXPECT_GT(m_bar->height(), m_window.height() / 2 - rowHeight);
    // A smaller window makes the expanded bar smaller.
    m_window.resize(800, 300);
    QApplication::processEvents();
    EXPECT_LE(m_bar->height(), m_window.height() / 2);

    m_bar->get_expand_button()->click();
    EXPECT_EQ(m_bar->height(), oneRow);
    round({});
    EXPECT_TRUE(m_bar->isHidden());
}

TEST_F(NotifyWidgets, RowsAreTheListedSchemesColouredByScheme)
{
    start();
    round({ZBNotifyItem(900, 50.0, "OVERDUE: Tax return", 7, ZBDate(ZBDate::E_Blank)),
           ZBNotifyItem(200, 50.0, "Quiet one", 8, ZBDate(ZBDate::E_Blank)), rows(1)[0]});
    ZBTreeWidgetQt* tree = m_bar->get_tree();
    ASSERT_EQ(tree->topLevelItemCount(), 2);
    QTreeWidgetItem* first = tree->topLevelItem(0);
    EXPECT_EQ(first->text(0), "OVERDUE: Tax return");
    EXPECT_EQ(first->background(0).color(), QColor(255, 102, 102));
    EXPECT_EQ(first->foreground(0).color(), QColor(Qt::black));
    EXPECT_EQ(m_list.get_row_item(first)->get_object_id(), 7);
    // Only the alert counts: a list row and a scheme set to nothing do not.
    EXPECT_EQ(m_list.get_badge_count(), 1);
}

TEST_F(NotifyWidgets, AnAlertAppearsOnceWithoutTakingTheKeyboard)
{
    start();
    show_and_focus();
    const ZBNotifyItem overdue(900, 50.0, "OVERDUE: Tax return", 7, ZBDate(ZBDate::E_Blank));
    const ZBNotifyItem worse(900, 80.0, "OVERDUE: Rent", 9, ZBDate(ZBDate::E_Blank));
    round({overdue});
    ZBNotifyDialogQt* dialog = m_list.get_dialog();
    ASSERT_TRUE(dialog->isVisible());
    QTest::qWait(50);
    EXPECT_EQ(QApplication::activeWindow(), &m_window);
    EXPECT_EQ(QApplication::focusWidget(), m_edit);

    // The user closes it; the next round does not bring the same alert back.
    dialog->findChild<QPushButton*>("closeButton")->click();
    EXPECT_FALSE(dialog->isVisible());
    round({overdue});
    EXPECT_FALSE(dialog->isVisible());
    // A new one comes first when it matters more.
    round({overdue, worse});
    ASSERT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->findChild<QLabel*>("notificationMessage")->text(), "OVERDUE: Rent");
    // Resolved: it leaves the dialog, which then hides.
    round({overdue});
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(NotifyWidgets, PopUpsGoToTheDesktopServiceOncePerNewItem)
{
    start(true);
    const ZBNotifyItem urgent(600, 50.0, "Urgent: Call the bank", 3, ZBDate(ZBDate::E_Blank));
    round({urgent, rows(1)[0]});
    round({urgent, rows(1)[0]});
    ASSERT_EQ(m_sent.size(), 1u);
    EXPECT_EQ(m_sent[0], "Urgent: Urgent: Call the bank");
    EXPECT_FALSE(m_list.get_dialog()->isVisible());
}

TEST_F(NotifyWidgets, DismissAndSnoozeTakeTheItemOutOfTheBarAndTheDialog)
{
    start();
    const ZBNotifyItem overdue(900, 50.0, "OVERDUE: Tax return", 7, ZBDate(ZBDate::E_Blank));
    round({overdue, rows(1)[0]});
    int updates = 0;
    QObject::connect(&m_list, &ZBNotifyListQt::updated, [&updates]() { ++updates; });
    m_list.dismiss_item(*m_list.get_dialog()->get_current());
    EXPECT_EQ(m_bar->get_tree()->topLevelItemCount(), 1);
    EXPECT_EQ(m_list.get_dialog()->get_nitems(), 0);
    m_list.snooze_item(*m_list.get_row_item(m_bar->get_tree()->topLevelItem(0)));
    EXPECT_TRUE(m_bar->isHidden());
    EXPECT_EQ(updates, 2);
    round({overdue, rows(1)[0]});
    EXPECT_TRUE(m_list.get_items().empty());
}

TEST_F(NotifyWidgets, SettingsOfferWhatCanBeDoneAndTheTrayOnlyWhereThereIsOne)
{
    start(false);
    // No desktop service and no tray offscreen: a pop-up steps down to the badge.
    EXPECT_EQ(m_list.get_scheme_id(600)->get_response(), 60);
    {
        ZBNotifySettingsQt page(m_list, false);
        page.update_display();
        EXPECT_EQ(page.get_tray_item(), nullptr);
        m_list.set_trayicon(":/LibGui/images/32/Notify.svg");
        ZBNotifySettingsQt noTray(m_list, false);
        EXPECT_EQ(noTray.get_tray_item(), nullptr);
    }
    ZBNotifySettingsQt page(m_list, true);
    page.update_display();
    ASSERT_NE(page.get_tray_item(), nullptr);
    EXPECT_EQ(page.get_tray_item()->get_label(), "Show system tray icon");
    const int overdue = 0 + 2; // after the two schemes of the data check and notes
    ASSERT_EQ(m_list.get_scheme_no(overdue)->get_id(), 900);
    QComboBox* combo = qobject_cast<QComboBox*>(page.get_scheme_item(overdue)->get_field());
    ASSERT_NE(combo, nullptr);
    // Pop-ups are not offered where there is nowhere to show them.
    EXPECT_EQ(combo->findText("Pop up a warning message"), -1);
    combo->setCurrentIndex(combo->findText("Show in the notification list"));
    QCheckBox* tray = qobject_cast<QCheckBox*>(page.get_tray_item()->get_field());
    ASSERT_NE(tray, nullptr);
    tray->setChecked(false);
    ASSERT_FALSE(iszbwarn(page.read_form()));
    EXPECT_EQ(m_list.get_scheme_id(900)->get_response(), 40);
    EXPECT_EQ(zbparam().get_system_value("NotifyOverdue", 0), 40);
    EXPECT_FALSE(m_list.get_usetray());
    EXPECT_EQ(zbparam().get_system_value("UseSystemTray", 1), 0);
}
