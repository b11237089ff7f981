#pragma once

#include "LibCore/application/zbapplication.h"

#include <memory>
#include <string>

namespace Tervalon {

class ZBDatabase;

// The identity the desktop and the command-line programs share, and the
// making of the database class that holds a diary.
class AppDiaryInfo {
public:
    static const char* const C_Application; // "TervalonDiary"
    static const char* const C_Title;       // "Tervalon Diary"
    static const char* const C_Extension;   // ".zbd"
    static const char* const C_Release;     // "4.5.00"
    static const char* const C_Tag;
    static const char* const C_Date;
    static const char* const C_Description;
    static const char* const C_Company;
    static const char* const C_Domain;
    static const char* const C_UrlScheme;   // "tervalondiary"

    // A plain application object with the diary's identity, for programs without a window.
    static std::unique_ptr<ZBApplication> make_application(int argc, char** argv);
    // Errors of a program without a window: no dialog and no echo as they are
    // reported; the error log gets each record when it is handled.
    static void setup_cli_errors(ZBApplication& app);
    // The database class of a diary file, expecting the diary's application type.
    static ZBDatabase* make_database();
};

} // namespace Tervalon
