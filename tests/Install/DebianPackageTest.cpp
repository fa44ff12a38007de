// SPDX-License-Identifier: GPL-3.0-or-later
#include "InstalledTree.h"
#include "TestEnvironment.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;

// The Debian package CPack makes from the install rules: every installed file under /usr,
// dependencies read from the shared libraries, no path of the build machine inside. An
// executable of its own because it skips where Debian's packaging tools are missing.
class DebianPackageTest : public QObject
{
    Q_OBJECT

private:
    QString m_package;

    static QString dpkgDeb() { return QStandardPaths::findExecutable(u"dpkg-deb"_s); }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        for (const QString &tool : {u"dpkg-deb"_s, u"dpkg-shlibdeps"_s})
            if (QStandardPaths::findExecutable(tool).isEmpty())
                QSKIP(qPrintable(tool + u" is not installed (scripts/build-deb.sh installs dpkg-dev)"_s));

        const QString output = TestEnvironment::temporaryRoot() + u"/package"_s;
        const InstalledTree::Run result = InstalledTree::run(
            QStringLiteral(TESSALOOM_CPACK_COMMAND),
            {u"-G"_s, u"DEB"_s, u"-B"_s, output, u"--config"_s, QStringLiteral(TESSALOOM_BUILD_DIR) + u"/CPackConfig.cmake"_s},
            QProcessEnvironment::systemEnvironment(), 600'000);
        QVERIFY2(result.finished && result.exitCode == 0, QByteArray(result.standardOutput + result.standardError).constData());
        const QStringList packages = QDir(output).entryList({u"tessaloom_*.deb"_s}, QDir::Files);
        QCOMPARE(packages.size(), 1);
        m_package = output + u'/' + packages.constFirst();
    }

    void packageIsNamedAfterTheCommandVersionAndArchitecture()
    {
        QVERIFY2(QFileInfo(m_package).fileName().startsWith(u"tessaloom_" TESSALOOM_VERSION "-1_"_s), qPrintable(m_package));
    }

    void packageHoldsEveryInstalledFileUnderUsr()
    {
        const InstalledTree::Run listing = InstalledTree::run(dpkgDeb(), {u"-c"_s, m_package});
        QVERIFY(listing.finished);
        QCOMPARE(listing.exitCode, 0);
        const QString text = QString::fromUtf8(listing.standardOutput);
        for (const QString &file : InstalledTree::expectedFiles())
            QVERIFY2(text.contains(u" ./usr/"_s + file + u'\n'), qPrintable(file + u" is missing from:\n"_s + text));
    }

    void dependenciesAreReadFromTheSharedLibraries()
    {
        const InstalledTree::Run info = InstalledTree::run(dpkgDeb(), {u"-I"_s, m_package});
        QVERIFY(info.finished);
        QCOMPARE(info.exitCode, 0);
        const QString text = QString::fromUtf8(info.standardOutput);
        const QRegularExpressionMatch depends =
            QRegularExpression(u"^ Depends: (.*)$"_s, QRegularExpression::MultilineOption).match(text);
        QVERIFY2(depends.hasMatch(), qPrintable(text));
        // Versioned library packages, as only dpkg-shlibdeps writes them.
        for (const QString &library : {u"libc6 (>= "_s, u"libqt6core6 (>= "_s, u"libqt6widgets6 (>= "_s,
                                       u"libsqlite3-0 (>= "_s, u"zlib1g (>= "_s})
            QVERIFY2(depends.captured(1).contains(library), qPrintable(library + u" not in: "_s + depends.captured(1)));
        // And the SVG icon engine, which Qt loads at run time for the bundled icon theme.
        QVERIFY2(depends.captured(1).contains(u"libqt6svg6"_s), qPrintable(depends.captured(1)));
        QVERIFY2(text.contains(u" Package: tessaloom\n"_s), qPrintable(text));
    }

    void noPackagedFileHoldsABuildTreePath()
    {
        const QString unpacked = TestEnvironment::temporaryRoot() + u"/unpacked"_s;
        const InstalledTree::Run extraction = InstalledTree::run(dpkgDeb(), {u"-x"_s, m_package, unpacked});
        QVERIFY(extraction.finished);
        QCOMPARE(extraction.exitCode, 0);
        QVERIFY(QFileInfo(unpacked + u"/usr/bin/tessaloom"_s).isExecutable());
        const QStringList holders = InstalledTree::filesContaining(unpacked, InstalledTree::buildTreePaths());
        QVERIFY2(holders.isEmpty(), qPrintable(holders.join(u"; "_s)));
    }
};

QTEST_GUILESS_MAIN(DebianPackageTest)
#include "DebianPackageTest.moc"
