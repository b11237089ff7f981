#pragma once

#include "LibDate/date/zbdateslot.h"

#include <string>

namespace Tervalon {

class ZBCalendar;

// A source of calendar entries: tasks and appointments, prayers, payments.
// Before a view paints, each reporter of the calendar is asked to add what it
// has for the visible slot. The base adds nothing.
class ZBCalendarReporter {
public:
    ZBCalendarReporter() = default;
    ZBCalendarReporter(const std::string& title, const std::string& image) : m_title(title), m_image(image) {}
    virtual ~ZBCalendarReporter() = default;

    const std::string& get_title() const { return m_title; }
    void set_title(const std::string& title) { m_title = title; }
    const std::string& get_image() const { return m_image; }
    void set_image(const std::string& image) { m_image = image; }

    virtual int generate_report(const ZBDateSlot& slot, ZBCalendar& calendar);

private:
    std::string m_title;
    std::string m_image;
};

} // namespace Tervalon
