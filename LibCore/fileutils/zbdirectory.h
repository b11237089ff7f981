#pragma once

#include "LibCore/fileutils/zbfile.h"
#include "LibCore/ptrarray/zbptrarray.h"

#include <string>

namespace Tervalon {

// A directory and the files in it that match a filter ("*.zbd", "*" by
// default), sorted by path so that listings are stable. Owns its entries.
// Subdirectories are walked when loading recursively but not listed.
class ZBDirectory : public ZBFile {
public:
    ZBDirectory();
    explicit ZBDirectory(const std::string& pathName, const std::string& filter = "*");
    ~ZBDirectory() override;

    int load(bool recursive);
    int load(const std::string& pathName, const std::string& filter, bool recursive);
    // The files directly inside, without walking down.
    int load_contents() { return load(false); }

    int get_nfiles() const { return m_file.size(); }
    const ZBFile* get_file_by_index(int index) const;
    const ZBFile* get_file_by_pathname(const std::string& pathName) const;
    const std::string& get_filter() const { return m_filter; }
    void set_filter(const std::string& filter) { m_filter = filter; }
    bool is_directory() const;

    void dump(std::ostream& out, int indent) const override;

private:
    int load_dir(const std::string& dir, bool recursive, int depth);

    std::string m_filter;
    ZBPtrArray<ZBFile> m_file;
};

} // namespace Tervalon
