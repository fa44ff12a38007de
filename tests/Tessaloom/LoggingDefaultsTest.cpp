// SPDX-License-Identifier: GPL-3.0-or-later
#include "Logging.h"
#include "LoopbackHttpServer.h"
#include "Services/ImageCacheService.h"
#include "TestEnvironment.h"
#include "Views/LoggingDefaults.h"
#include "Views/TessaloomApp.h"

#include <QApplication>
#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTest>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// Set in the child process that this test starts: the picture's address.
constexpr char childPictureVariable[] = "TESSALOOM_LOGGING_TEST_PICTURE";

// The child: the program's start-up, then one picture through the image cache, as the
// grid would fetch it. It writes its log to standard error as the program would.
int runStartUpAndFetchPicture()
{
    TestEnvironment::isolate();
    TessaloomApp tessaloom;
    const QImage picture = QCoro::waitFor(ImageCacheService::shared().image(qEnvironmentVariable(childPictureVariable)));
    std::printf("picture %dx%d\n", picture.width(), picture.height());
    return picture.isNull() ? 1 : 0;
}

QByteArray pngBytes()
{
    QImage image(24, 16, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace

// Debug lines are off unless the environment asks for them; warnings always pass.
class LoggingDefaultsTest : public QObject
{
    Q_OBJECT

private:
    LoopbackHttpServer m_server;
    int m_pictures = 0;

    // Runs the child with `rules` as QT_LOGGING_RULES (unset when empty); its standard error.
    QString standardErrorOfStartUp(const QByteArray &rules, const QString &configurationFile = {})
    {
        const QString path = u"/rb/media/sets/%1-1.png"_s.arg(++m_pictures);
        m_server.serveBytes(path, pngBytes());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(u"QT_LOGGING_RULES"_s);
        environment.remove(u"QT_LOGGING_CONF"_s);
        if (!rules.isEmpty())
            environment.insert(u"QT_LOGGING_RULES"_s, QString::fromUtf8(rules));
        if (!configurationFile.isEmpty())
            environment.insert(u"QT_LOGGING_CONF"_s, configurationFile);
        environment.insert(QString::fromLatin1(childPictureVariable), m_server.url(path).toString());
        environment.insert(u"TESSALOOM_ENDPOINTS"_s, u"updates=http://127.0.0.1:9/appcast.xml"_s);
        environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        QProcess child;
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(), {});
        if (!child.waitForFinished(60'000))
            return u"the child did not finish"_s;
        const QString output = QString::fromUtf8(child.readAllStandardOutput());
        const QString errors = QString::fromUtf8(child.readAllStandardError());
        if (child.exitCode() != 0 || !output.contains(u"picture 24x16"_s))
            return u"the child failed: "_s + output + errors;
        return errors;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TestEnvironment::isolate();
        QVERIFY(m_server.listen());
    }

    void cleanup()
    {
        qunsetenv("QT_LOGGING_RULES");
        QLoggingCategory::setFilterRules(QString());
    }

    void debugIsOffAndWarningsStayAfterTheDefaultsApply()
    {
        qunsetenv("QT_LOGGING_RULES");
        LoggingDefaults::apply();
        QVERIFY(!lcCache().isDebugEnabled());
        QVERIFY(!lcApp().isDebugEnabled());
        QVERIFY(lcCache().isInfoEnabled());
        QVERIFY(lcCache().isWarningEnabled());
        QVERIFY(lcCache().isCriticalEnabled());
    }

    void startUpWritesNoDebugLinesForAPictureByDefault()
    {
        const QString errors = standardErrorOfStartUp({});
        QVERIFY2(!errors.startsWith(u"the child"_s), qPrintable(errors));
        QVERIFY2(!errors.contains(u"image(for:)"_s), qPrintable(errors));
        QVERIFY2(!errors.contains(u"fetchFromNetwork"_s), qPrintable(errors));
    }

    void debugRulesInTheEnvironmentBringTheDebugLinesBack()
    {
        const QString errors = standardErrorOfStartUp("*.debug=true");
        QVERIFY2(!errors.startsWith(u"the child"_s), qPrintable(errors));
        QVERIFY2(errors.contains(u"image(for:) fetching from network"_s), qPrintable(errors));
    }

    void aLoggingConfigurationFileBringsTheDebugLinesBack()
    {
        const QString path = TestEnvironment::temporaryRoot() + u"/qtlogging.ini"_s;
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[Rules]\ncom.tessaloom.app.cache.debug=true\n");
        file.close();
        const QString errors = standardErrorOfStartUp({}, path);
        QVERIFY2(!errors.startsWith(u"the child"_s), qPrintable(errors));
        QVERIFY2(errors.contains(u"image(for:) fetching from network"_s), qPrintable(errors));
    }

};

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    if (qEnvironmentVariableIsSet(childPictureVariable))
        return runStartUpAndFetchPicture();
    LoggingDefaultsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "LoggingDefaultsTest.moc"
