// SPDX-License-Identifier: GPL-3.0-or-later
#include "DumpHostFixture.h"

#include "TestEnvironment.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using RebrickableKit::RebrickableDownloader;

QString DumpHostFixture::urlPath(const QString &name)
{
    return u"/media/downloads/"_s + name + u".csv.gz"_s;
}

qint64 DumpHostFixture::lineCount(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    qint64 lines = 0;
    while (!file.atEnd())
        lines += file.read(1 << 20).count('\n');
    return lines;
}

const QStringList &DumpHostFixture::secretParts()
{
    static const QStringList parts = {u"someone"_s, u"hunter2"_s, u"SECRET123"_s, u"apikey"_s, u"frag"_s};
    return parts;
}

void DumpHostFixture::start()
{
    m_server = std::make_unique<LoopbackHttpServer>();
    QVERIFY(m_server->listen());
    m_work = std::make_unique<QTemporaryDir>();
    QVERIFY(m_work->isValid());
}

void DumpHostFixture::stop()
{
    m_server.reset();
    m_work.reset();
}

QString DumpHostFixture::folder(const QString &name) const
{
    return m_work->filePath(name);
}

QString DumpHostFixture::outputDirectory() const
{
    return m_work->filePath(u"RebrickableCSV"_s);
}

QString DumpHostFixture::output(const QString &fileName) const
{
    return outputDirectory() + u'/' + fileName;
}

std::unique_ptr<RebrickableDownloader> DumpHostFixture::makeDownloader() const
{
    return std::make_unique<RebrickableDownloader>(outputDirectory(), m_server->baseUrl());
}

void DumpHostFixture::serveDumpFolder(const QString &dumpFolder, const Headers &headers)
{
    for (const QString &name : RebrickableDownloader::dumpNames())
        m_server->serveFile(urlPath(name), dumpFolder + u'/' + name + u".csv.gz"_s, headers);
}

bool DumpHostFixture::findFullDumps()
{
    m_fullDumps = TestEnvironment::sharedDumpDirectory();
    return !m_fullDumps.isEmpty();
}

QString DumpHostFixture::fullDump(const QString &name) const
{
    return m_fullDumps + u'/' + name + u".csv.gz"_s;
}

QUrl DumpHostFixture::addressWithSecrets() const
{
    QUrl url = m_server->baseUrl();
    url.setUserName(u"someone"_s);
    url.setPassword(u"hunter2"_s);
    url.setPath(u"/x"_s);
    url.setQuery(u"apikey=SECRET123"_s);
    url.setFragment(u"frag"_s);
    return url;
}

ToolRun DumpHostFixture::runTool(const QString &program, const QStringList &arguments, const QUrl &baseUrl) const
{
    return ToolRun::of(program, arguments, baseUrl.isEmpty() ? m_server->baseUrl() : baseUrl);
}
