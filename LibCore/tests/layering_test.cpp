// The foundation includes nothing from the libraries that stand on it.
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <string>

TEST(Layering, TheFoundationIncludesNoHigherLibrary)
{
    // The data folder need not exist, so the path is cleaned as text.
    const QString libCore = QDir::cleanPath(QString(TERVALON_TEST_DATA) + "/../..");
    const QRegularExpression higher("#\\s*include\\s*[\"<](LibObject|LibDate|LibComms|LibDatabase|LibDiary|LibGui|"
                                    "AppTervalonDiary)/");
    int files = 0;
    QDirIterator it(libCore, {"*.h", "*.cpp"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (path.contains("/tests/"))
            continue;
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        const QString text = QString::fromUtf8(file.readAll());
        EXPECT_FALSE(higher.match(text).hasMatch()) << path.toStdString();
        ++files;
    }
    EXPECT_GT(files, 50);
}
