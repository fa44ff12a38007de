// SPDX-License-Identifier: GPL-3.0-or-later
#include "InstalledTree.h"
#include "TestEnvironment.h"

#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;

// The installed desktop entry and AppStream metainfo as the desktop's own validators judge
// them. An executable of its own because it skips where a validator is not installed.
class InstalledMetadataValidationTest : public QObject
{
    Q_OBJECT

private:
    QString m_prefix;

    static void verifyAccepted(const QString &validator, const QStringList &arguments)
    {
        const QString tool = QStandardPaths::findExecutable(validator);
        if (tool.isEmpty())
            QSKIP(qPrintable(validator + u" is not installed (scripts/setup.sh installs it)"_s));
        const InstalledTree::Run result = InstalledTree::run(tool, arguments);
        const QByteArray output = result.standardOutput + result.standardError;
        QVERIFY2(result.finished, output.constData());
        QVERIFY2(result.exitCode == 0, output.constData());
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        m_prefix = TestEnvironment::temporaryRoot() + u"/prefix"_s;
        const QString error = InstalledTree::install(m_prefix);
        QVERIFY2(error.isEmpty(), qPrintable(error));
    }

    void desktopEntryPassesDesktopFileValidate()
    {
        verifyAccepted(u"desktop-file-validate"_s, {m_prefix + u"/share/applications/com.tessaloom.app.desktop"_s});
    }

    void metainfoPassesAppstreamValidationWithoutNetwork()
    {
        verifyAccepted(u"appstreamcli"_s, {u"validate"_s, u"--no-net"_s, u"--pedantic"_s,
                                           m_prefix + u"/share/metainfo/com.tessaloom.app.metainfo.xml"_s});
    }
};

QTEST_GUILESS_MAIN(InstalledMetadataValidationTest)
#include "InstalledMetadataValidationTest.moc"
