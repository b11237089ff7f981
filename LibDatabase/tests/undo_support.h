#pragma once

#include "LibDatabase/db/zbdatabase.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace Tervalon {
namespace Test {

// A fixture for the session files: a fixed clock and a folder of its own.
class UndoFixture : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_dir = make_temp_dir("undo");
        ZBDateUtils::set_fixed_now(ZBDate(2026, 2, 2, 8, 0, 0, 0, ZBDate::C_GMT));
    }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
    std::string path(const std::string& name) const { return m_dir + "/" + name; }

    // A saved file with objects "a" and "b" under the database, X=0 on both.
    void make_file(const std::string& file, int* a = nullptr, int* b = nullptr)
    {
        ZBDatabase db;
        ASSERT_EQ(db.create(file, false), ZBErrC_ok);
        for (int i = 0; i < 2; ++i) {
            ZBDBObject* object = new ZBDBObject();
            ASSERT_EQ(db.add_object(object, &db, "OB", i == 0 ? "a" : "b", -1, ""), ZBErrC_ok);
            object->set_var_value("X", "0");
            if (i == 0 && a)
                *a = object->get_id();
            if (i == 1 && b)
                *b = object->get_id();
        }
        ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
        db.unload();
    }

    // One edit of X through the editing protocol, closed as one operation.
    static int set_x(ZBDatabase& db, int id, const std::string& value, const std::string& operation)
    {
        int result = db.edit_object(id, false);
        if (iszbwarn(result))
            return result;
        db.get_object_by_id(id)->set_var_value("X", value);
        return db.commit_object(id, operation);
    }
    static std::string x_of(const ZBDatabase& db, int id)
    {
        ZBDBObject* object = db.get_object_by_id(id);
        return object ? object->get_var_value("X") : std::string("(gone)");
    }

    std::string m_dir;
};

} // namespace Test
} // namespace Tervalon
