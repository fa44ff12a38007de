// SPDX-License-Identifier: GPL-3.0-or-later
#include "InstalledTree.h"
#include "TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTest>

using namespace Qt::StringLiterals;

// The program as `cmake --install` lays it out: every file in its freedesktop place, the
// command line answered without a window, the window opened on the sample catalog and the
// texts of the installed tree, also after the tree is moved elsewhere.
class InstallTest : public QObject
{
    Q_OBJECT

private:
    QString m_prefix;

    QString program() const { return m_prefix + u"/bin/tessaloom"_s; }

    // Starts the program at `prefix` offscreen with a fresh HOME and has it save a picture
    // of its main window once the content shows; checks it read its catalog and texts
    // from that tree.
    void verifyStartsFromTree(const QString &prefix)
    {
        const QString home = TestEnvironment::temporaryRoot() + u"/home-"_s + QFileInfo(prefix).fileName();
        const QString picture = home + u"/main-window.png"_s;
        const InstalledTree::Run result = InstalledTree::run(prefix + u"/bin/tessaloom"_s, {u"--screenshot"_s, picture},
                                                             InstalledTree::offscreenEnvironment(home));
        const QString log = QString::fromLocal8Bit(result.standardError);
        QVERIFY2(result.finished, qPrintable(log));
        QVERIFY2(result.exitCode == 0, qPrintable(log));
        QVERIFY2(log.contains(u"Rebrickable catalog loaded from: "_s + prefix + u"/share/Tessaloom/rebrickable.sqlite"_s),
                 qPrintable(log));
        QVERIFY2(log.contains(u"Texts loaded from: "_s + prefix + u"/share/Tessaloom/translations/tessaloom_en.qm"_s),
                 qPrintable(log));
        const QImage image(picture);
        QCOMPARE(image.size(), QSize(1280, 800));
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        m_prefix = TestEnvironment::temporaryRoot() + u"/prefix"_s;
        const QString error = InstalledTree::install(m_prefix);
        QVERIFY2(error.isEmpty(), qPrintable(error));
    }

    void installPutsEveryFileInItsFreedesktopPlace()
    {
        for (const QString &file : InstalledTree::expectedFiles())
            QVERIFY2(QFileInfo(m_prefix + u'/' + file).isFile(), qPrintable(file + u" is not installed"_s));
        QVERIFY(QFileInfo(program()).isExecutable());
    }

    void installHoldsNothingElse()
    {
        QStringList expected = InstalledTree::expectedFiles();
        expected.sort();
        QCOMPARE(InstalledTree::filesUnder(m_prefix), expected);
    }

    void versionPrintsTheVersionWithoutADisplay()
    {
        const InstalledTree::Run result =
            InstalledTree::run(program(), {u"--version"_s}, InstalledTree::environmentWithoutDisplay());
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.standardOutput.trimmed(), QByteArray("Tessaloom " TESSALOOM_VERSION));
    }

    void helpListsTheOptionsWithoutADisplay()
    {
        const InstalledTree::Run result =
            InstalledTree::run(program(), {u"--help"_s}, InstalledTree::environmentWithoutDisplay());
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 0);
        for (const char *option : {"Usage:", "--help", "--version", "--screenshot <file>"})
            QVERIFY2(result.standardOutput.contains(option), result.standardOutput.constData());
    }

    void unknownOptionIsNamedAndEndsWithStatusTwo()
    {
        const InstalledTree::Run result =
            InstalledTree::run(program(), {u"--frobnicate"_s}, InstalledTree::environmentWithoutDisplay());
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 2);
        QVERIFY2(result.standardError.contains("Unknown option 'frobnicate'"), result.standardError.constData());
        QVERIFY(result.standardOutput.isEmpty());
    }

    void unknownOptionEndsWithStatusTwoWhenADisplayIsThere()
    {
        const InstalledTree::Run result = InstalledTree::run(
            program(), {u"--frobnicate"_s},
            InstalledTree::offscreenEnvironment(TestEnvironment::temporaryRoot() + u"/home-unknown-option"_s));
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, 2);
        QVERIFY2(result.standardError.contains("Unknown option 'frobnicate'"), result.standardError.constData());
    }

    void startsOffscreenOnTheInstalledSampleCatalog()
    {
        verifyStartsFromTree(m_prefix);
    }

    void startsFromAMovedTree()
    {
        const QString moved = TestEnvironment::temporaryRoot() + u"/elsewhere/moved-prefix"_s;
        QVERIFY(QDir().mkpath(QFileInfo(moved).path()));
        QVERIFY(QDir().rename(m_prefix, moved));
        const auto moveBack = qScopeGuard([&] { QDir().rename(moved, m_prefix); });
        verifyStartsFromTree(moved);
    }

    void noInstalledFileHoldsABuildTreeOrThePrefixPath()
    {
        QStringList needles = InstalledTree::buildTreePaths();
        needles.append(m_prefix);
        const QStringList holders = InstalledTree::filesContaining(m_prefix, needles);
        QVERIFY2(holders.isEmpty(), qPrintable(holders.join(u"; "_s)));
    }

    void desktopEntryStartsTheInstalledCommandWithTheInstalledIcon()
    {
        QFile entry(m_prefix + u"/share/applications/com.tessaloom.app.desktop"_s);
        QVERIFY(entry.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(entry.readAll());
        QVERIFY2(text.contains(QRegularExpression(u"^Exec=tessaloom$"_s, QRegularExpression::MultilineOption)),
                 qPrintable(text));
        QVERIFY2(text.contains(QRegularExpression(u"^Icon=com.tessaloom.app$"_s, QRegularExpression::MultilineOption)),
                 qPrintable(text));
        QVERIFY2(text.contains(QRegularExpression(u"^Keywords=.*LEGO;.*collection;.*inventory;.*bricks;"_s,
                                                  QRegularExpression::MultilineOption)),
                 qPrintable(text));
    }

    void iconBitmapsHaveTheirThemeFoldersSize()
    {
        for (const int size : {48, 256}) {
            const QImage icon(m_prefix + u"/share/icons/hicolor/%1x%1/apps/com.tessaloom.app.png"_s.arg(size));
            QCOMPARE(icon.size(), QSize(size, size));
            // Drawn, not blank: the brick's red sits in the middle of the tile.
            const QColor centre = icon.pixelColor(size / 2, size * 5 / 8);
            QVERIFY2(centre.red() > 150 && centre.green() < 120, qPrintable(centre.name()));
        }
    }

    void metainfoNamesTheProgramsVersionAsARelease()
    {
        QFile metainfo(m_prefix + u"/share/metainfo/com.tessaloom.app.metainfo.xml"_s);
        QVERIFY(metainfo.open(QIODevice::ReadOnly));
        const QByteArray text = metainfo.readAll();
        QVERIFY(text.contains("<release version=\"" TESSALOOM_VERSION "\""));
        QVERIFY(text.contains("<launchable type=\"desktop-id\">com.tessaloom.app.desktop</launchable>"));
    }
};

QTEST_GUILESS_MAIN(InstallTest)
#include "InstallTest.moc"
