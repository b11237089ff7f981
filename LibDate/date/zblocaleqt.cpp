#include "LibDate/date/zblocaleqt.h"

#include <QDate>
#include <QLocale>
#include <QString>

namespace Tervalon {

namespace {

// The row of the format table that fits a Qt short date format such as
// "dd/MM/yyyy" or "M/d/yy": the order of the fields, the separator and
// whether the month is a name.
int format_row(const QString& format)
{
    int day = format.indexOf('d');
    int month = format.indexOf('M');
    int year = format.indexOf('y');
    bool name = format.contains("MMM");
    bool dash = format.contains('-');
    if (year >= 0 && year < month && year < day)
        return name ? (dash ? 8 : 10) : (dash ? 7 : 9);
    if (month >= 0 && month < day)
        return name ? 6 : (dash ? 5 : 4);
    return name ? (dash ? 3 : 1) : (dash ? 2 : 0);
}

} // namespace

ZBLocaleQt::ZBLocaleQt()
{
    ZBLocaleQt::set_locale_names();
    ZBLocaleQt::set_defaults();
}

void ZBLocaleQt::set_defaults()
{
    ZBLocale::set_defaults();
    QLocale locale = QLocale::system();
    set_first_day(int(locale.firstDayOfWeek()) % 7); // Qt counts Monday 1 to Sunday 7
    set_day_format(format_row(locale.dateFormat(QLocale::ShortFormat)));
    set_24hour_clock(!locale.timeFormat(QLocale::ShortFormat).contains("AP", Qt::CaseInsensitive));
    QString symbol = locale.currencySymbol(QLocale::CurrencySymbol);
    if (!symbol.isEmpty())
        set_currency(symbol.toStdString());
    set_groupsep(QString(locale.groupSeparator()).toStdString());
    set_decimal(QString(locale.decimalPoint()).toStdString());
}

void ZBLocaleQt::set_locale_names()
{
    ZBLocale::set_locale_names();
    QLocale locale = QLocale::system();
    bool english = locale.language() == QLocale::English || locale.language() == QLocale::C;
    set_defaultlocale(english);
    if (english)
        return;
    std::vector<std::string> weekdayShort, weekdayLong, monthShort, monthLong;
    // 2023-01-01 was a Sunday, so day i of that week is weekday i.
    for (int i = 0; i < 7; ++i) {
        QDate day(2023, 1, 1 + i);
        weekdayShort.push_back(locale.toString(day, "ddd").toStdString());
        weekdayLong.push_back(locale.toString(day, "dddd").toStdString());
    }
    for (int m = 1; m <= 12; ++m) {
        QDate day(2023, m, 1);
        monthShort.push_back(locale.toString(day, "MMM").toStdString());
        monthLong.push_back(locale.toString(day, "MMMM").toStdString());
    }
    set_local_names(weekdayShort, weekdayLong, monthShort, monthLong);
}

} // namespace Tervalon
