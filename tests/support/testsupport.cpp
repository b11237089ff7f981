#include "tests/support/testsupport.h"

#include <QDir>
#include <QFile>

#include <fstream>
#include <sstream>

namespace Tervalon {
namespace Test {

std::string make_temp_dir(const std::string& name)
{
    static int counter = 0;
    QString path = QString::fromStdString(scratch_dir()) + "/" + QString::fromStdString(name) + "-" + QString::number(++counter);
    QDir(path).removeRecursively();
    QDir().mkpath(path);
    return path.toStdString();
}

std::string read_file(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void write_file(const std::string& path, const std::string& text)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

bool file_exists(const std::string& path)
{
    return QFile::exists(QString::fromStdString(path));
}

} // namespace Test
} // namespace Tervalon
