#pragma once

#include "LibCore/time/zbmoment.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// What the system knows of one file: its path, size and times, as read by
// refresh(). A value: copies do not touch the disk.
class ZBFile {
public:
    ZBFile();
    explicit ZBFile(const std::string& pathName, bool refresh = true);
    virtual ~ZBFile();

    // Reads size and times from the disk; false when the file is not there.
    bool refresh();
    bool exists() const { return m_exists; }

    const std::string& get_pathname() const { return m_pathName; }
    void set_pathname(const std::string& pathName, bool refresh = true);
    std::string get_filename() const;
    const ZBMoment& get_created() const { return m_created; }
    const ZBMoment& get_modified() const { return m_modified; }
    long long get_size() const { return m_size; }
    // Keeps the times, and gives the file on disk the modified time.
    int set_times(const ZBMoment& created, const ZBMoment& modified);

    bool operator==(const ZBFile& other) const;
    virtual void dump(std::ostream& out, int indent) const;

protected:
    std::string m_pathName;
    long long m_size;
    ZBMoment m_created;
    ZBMoment m_modified;
    bool m_exists;
};

} // namespace Tervalon
