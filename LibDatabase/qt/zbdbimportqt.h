#pragma once

#include "LibGui/qt/zbwidgetqt.h"

#include <string>

namespace Tervalon {

class ZBDatabase;
class ZBDBManagerQt;

// Brings another data file in: opened as a copy, in place of the current
// data, or merged into it. The current data is kept as a snapshot before it
// is replaced. It deletes itself when done.
class ZBDBImportQt : public ZBWidgetQt {
    Q_OBJECT
public:
    static const char* const C_Merge;
    static const char* const C_Replace;
    static const char* const C_Open;

    ZBDBImportQt(ZBDatabase& db, ZBDBManagerQt& manager);
    ~ZBDBImportQt() override;

    static ZBDBImportQt* start_import(ZBDatabase& db, ZBDBManagerQt& manager);

    void step1();
    void step2(const std::string& file);
    void step3(const QString& key);

signals:
    void import_complete();

private:
    void finish();

    ZBDatabase& m_db;
    ZBDBManagerQt& m_manager;
    std::string m_file;
};

} // namespace Tervalon
