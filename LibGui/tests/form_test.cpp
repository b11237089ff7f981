#include "LibGui/qt/zbdurationqt.h"
#include "LibGui/qt/zbformitemqt.h"
#include "LibGui/qt/zbformqt.h"
#include "LibGui/qt/zbsettingsformqt.h"
#include "LibGui/qt/zbsettingsqt.h"
#include "LibCore/param/zbparam.h"
#include "tests/support/testsupport.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

ZBFormItemQt* item(std::function<void(ZBFormItemQt&)> setup)
{
    ZBFormItemQt* made = new ZBFormItemQt;
    setup(*made);
    return made;
}

QWidget* next_tab_stop(QWidget* from)
{
    for (QWidget* w = from->nextInFocusChain(); w && w != from; w = w->nextInFocusChain())
        if (w->focusPolicy() & Qt::TabFocus)
            return w;
    return nullptr;
}

void every_kind(ZBFormQt& form)
{
    form.add_item(item([](ZBFormItemQt& i) { i.set_label_type("info", "Note", "Read only"); }));
    form.add_item(item([](ZBFormItemQt& i) { i.set_text_type("title", "Title", "Buy milk"); }));
    form.add_item(item([](ZBFormItemQt& i) { i.set_bool_type("done", "Done", true); }));
    form.add_item(item([](ZBFormItemQt& i) { i.set_int_type("priority", "Priority", 500, 0, 100); }));
    form.add_item(item([](ZBFormItemQt& i) { i.set_float_type("cost", "Cost", -3.0, 0.0, 50.0); }));
    form.add_item(item([](ZBFormItemQt& i) { i.set_date_type("due", "Due", ZBDate(2026, 2, 9, 14, 0, 0, 0, 0)); }));
    form.add_item(item([](ZBFormItemQt& i) { i.set_duration_type("length", "Length", ZBDuration(5400)); }));
    form.add_item(item([](ZBFormItemQt& i) { i.set_location_type("place", "Place", ZBGeoPoint(51.5, -0.1, 20)); }));
    form.add_item(item([](ZBFormItemQt& i) { i.set_path_type("folder", "Folder", "/tmp", false); }));
    form.add_item(item([](ZBFormItemQt& i) { i.set_choice_type("who", "Who", {{4, "Ann"}, {9, "Bo"}}, 77); }));
}

} // namespace

TEST(FormQt, AFormWithNoItemsLaysOutNothing)
{
    ZBFormQt form;
    EXPECT_FALSE(iszbwarn(form.update_display()));
    EXPECT_EQ(form.get_layout(), nullptr);
    EXPECT_EQ(form.layout(), nullptr);
}

TEST(FormQt, EveryRowKindLaysOutWithLabelsAndTabOrder)
{
    ZBFormQt form;
    every_kind(form);
    ASSERT_FALSE(iszbwarn(form.update_display()));
    ASSERT_NE(form.get_layout(), nullptr);
    EXPECT_EQ(form.get_layout()->spacing(), 3);
    for (int n = 0; n < form.get_nitems(); ++n) {
        ZBFormItemQt* row = form.get_item_no(n);
        ASSERT_NE(row->get_field(), nullptr) << row->get_tag();
        EXPECT_EQ(row->get_label_widget()->buddy(), row->get_field()) << row->get_tag();
        EXPECT_TRUE(row->get_label_widget()->text().startsWith("&")) << row->get_tag();
    }
    // Tab goes from one row's field to the next row's.
    EXPECT_EQ(next_tab_stop(form.get_item_by_tag("title")->get_field()), form.get_item_by_tag("done")->get_field());
    EXPECT_EQ(next_tab_stop(form.get_item_by_tag("done")->get_field()), form.get_item_by_tag("priority")->get_field());
    EXPECT_EQ(form.get_item_id("who"), 9);
    EXPECT_EQ(form.get_item_by_tag("missing"), nullptr);
    // Laying out again reuses the same widgets.
    QWidget* title = form.get_item_by_tag("title")->get_field();
    form.update_display();
    EXPECT_EQ(form.get_item_by_tag("title")->get_field(), title);
}

TEST(FormQt, ValuesOutOfRangeTakeTheNearestAllowedOne)
{
    ZBFormQt form;
    every_kind(form);
    EXPECT_EQ(form.get_item_by_tag("priority")->get_int(), 100);
    EXPECT_DOUBLE_EQ(form.get_item_by_tag("cost")->get_double(), 0.0);
    EXPECT_EQ(form.get_item_by_tag("who")->get_choice_id(), 4);
    form.update_display();
    EXPECT_EQ(form.get_item_by_tag("priority")->get_int(), 100);
    EXPECT_EQ(form.get_item_by_tag("who")->get_choice_id(), 4);
    EXPECT_EQ(form.get_item_by_tag("due")->get_date(), ZBDate(2026, 2, 9, 14, 0, 0, 0, 0));
    EXPECT_EQ(form.get_item_by_tag("length")->get_duration(), ZBDuration(5400));
    EXPECT_DOUBLE_EQ(form.get_item_by_tag("place")->get_location().get_latitude(), 51.5);
    EXPECT_EQ(form.get_item_by_tag("folder")->get_text(), "/tmp");
}

TEST(FormQt, EditsAreSignalledWithTagAndValue)
{
    ZBFormQt form;
    every_kind(form);
    form.update_display();
    QSignalSpy values(&form, &ZBFormQt::value_changed);
    QSignalSpy ids(&form, &ZBFormQt::id_changed);
    static_cast<QSpinBox*>(form.get_item_by_tag("priority")->get_field())->setValue(42);
    ASSERT_EQ(values.count(), 1);
    EXPECT_EQ(values[0][0].toString(), "priority");
    EXPECT_EQ(values[0][1].toString(), "42");
    static_cast<QComboBox*>(form.get_item_by_tag("who")->get_field())->setCurrentIndex(1);
    ASSERT_EQ(ids.count(), 1);
    EXPECT_EQ(ids[0][1].toInt(), 9);
    EXPECT_EQ(form.get_last_edit_item(), form.get_item_by_tag("who"));
}

TEST(FormQt, FinalEditSignalsOnlyWhenEditingEnds)
{
    ZBFormQt form;
    ZBFormItemQt* title = item([](ZBFormItemQt& i) { i.set_text_type("title", "Title", ""); });
    title->set_signal_final_edit(true);
    form.add_item(title);
    form.update_display();
    form.show();
    QSignalSpy values(&form, &ZBFormQt::value_changed);
    QLineEdit* line = static_cast<QLineEdit*>(title->get_field());
    line->setFocus();
    QTest::keyClicks(line, "abc");
    EXPECT_EQ(values.count(), 0);
    QTest::keyClick(line, Qt::Key_Return);
    ASSERT_EQ(values.count(), 1);
    EXPECT_EQ(values[0][1].toString(), "abc");
}

TEST(FormQt, ADurationThatIsNotOneIsRefusedWithAMessage)
{
    ZBFormQt form;
    every_kind(form);
    form.update_display();
    ZBDurationQt* field = static_cast<ZBDurationQt*>(form.get_item_by_tag("length")->get_field());
    field->setText("soon-ish");
    std::string message;
    EXPECT_FALSE(form.validate(message));
    EXPECT_NE(message.find("Length"), std::string::npos);
    EXPECT_NE(message.find("soon-ish"), std::string::npos);
    EXPECT_EQ(form.get_item_by_tag("length")->get_duration(), ZBDuration(5400));
    field->setText("2:00");
    EXPECT_TRUE(form.validate(message));
    EXPECT_EQ(form.get_item_by_tag("length")->get_duration(), ZBDuration(7200));
}

TEST(SettingsQt, OkWritesOnlyChangedValuesAndBadStoredValuesShowSensibly)
{
    const std::string config = Tervalon::Test::make_temp_dir("settings") + "/test.cfg";
    ZBParam* param = new ZBParam();
    set_zbparam(param);
    param->add_config_file(config);
    param->set_system_value("PlanDays", "lots");
    param->set_system_value("AutoSave", "1");

    ZBSettingsQt settings;
    settings.set_restore_geom(false);
    ZBFormItemQt* days = settings.add_param("PlanDays", "Days to plan", ZBFormItemQt::E_Int, "28", 1, 365);
    settings.add_param("AutoSave", "Save automatically", ZBFormItemQt::E_Bool);
    ZBFormItemQt* backups = settings.add_param("Backups", "Backups", ZBFormItemQt::E_Int, "5", 0, 100);
    settings.add_notify({{"NotifyLate", "Late tasks"}}, {{0, "Off"}, {1, "In the list"}, {2, "Pop up"}}, 1);
    EXPECT_EQ(settings.get_tabs()->objectName(), "settingsTab");
    EXPECT_EQ(settings.get_tabs()->toolTip(), "This dialog lets you edit the settings for the application.");
    EXPECT_EQ(settings.get_tabs()->count(), 2);
    settings.show_dialog();
    EXPECT_EQ(days->get_int(), 1) << "a stored value that is no number shows as the least allowed";
    EXPECT_EQ(backups->get_int(), 5) << "a value never set shows its default";

    static_cast<QSpinBox*>(days->get_field())->setValue(14);
    QTest::keyClick(&settings, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(settings.result(), QDialog::Accepted);
    EXPECT_EQ(zbparam().get_system_value("PlanDays"), "14");
    EXPECT_EQ(zbparam().get_system_value("AutoSave"), "1");
    EXPECT_EQ(zbparam().get_system_value("NotifyLate"), "1");
    EXPECT_EQ(zbparam().get_system_value("Backups"), "5");
}
