#pragma once

#include "LibGui/qt/zbwidgetqt.h"

namespace Tervalon {

class ZBDatabase;
class ZBDBManagerQt;

// The way out of a file: save or ask, wait for a sync to end or ask, then
// unload. Changes are only dropped when the user says "Discard". It
// deletes itself when done and reports by signal.
class ZBDBUnloadQt : public ZBWidgetQt {
    Q_OBJECT
public:
    static const char* const C_Discard;

    ZBDBUnloadQt(ZBDatabase& db, ZBDBManagerQt& manager, bool force);
    ~ZBDBUnloadQt() override;

    static ZBDBUnloadQt* start_unload(ZBDatabase& db, ZBDBManagerQt& manager, bool force);

    void step1();
    void save_choice(const QString& key);
    void step2();
    void sync_choice(const QString& key);
    void step3();

signals:
    void unload_complete();
    void unload_cancelled();
    void unload_failed();

private:
    void finish();

    ZBDatabase& m_db;
    ZBDBManagerQt& m_manager;
    bool m_force;
    bool m_done = false;
};

} // namespace Tervalon
