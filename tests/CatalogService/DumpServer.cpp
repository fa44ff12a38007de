// SPDX-License-Identifier: GPL-3.0-or-later
#include "DumpServer.h"

#include <QDir>
#include <QFile>
#include <QTemporaryFile>

#include <zlib.h>

using namespace Qt::StringLiterals;

QStringList DumpServer::dumpNames()
{
    return {u"themes"_s, u"colors"_s, u"part_categories"_s, u"parts"_s, u"part_relationships"_s, u"elements"_s,
            u"minifigs"_s, u"sets"_s, u"inventories"_s, u"inventory_parts"_s, u"inventory_sets"_s,
            u"inventory_minifigs"_s};
}

QString DumpServer::path(const QString &name)
{
    return u"/media/downloads/"_s + name + u".csv.gz"_s;
}

QByteArray DumpServer::gzip(const QByteArray &bytes)
{
    QTemporaryFile file;
    if (!file.open())
        return {};
    file.close();
    gzFile out = gzopen(QFile::encodeName(file.fileName()).constData(), "wb");
    gzwrite(out, bytes.constData(), unsigned(bytes.size()));
    gzclose(out);
    QFile in(file.fileName());
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}

bool DumpServer::serveCsvDirectory(const QString &csvDirectory, const QString &workDirectory)
{
    QDir().mkpath(workDirectory);
    for (const QString &name : dumpNames()) {
        QFile csv(csvDirectory + u'/' + name + u".csv"_s);
        QFile gz(workDirectory + u'/' + name + u".csv.gz"_s);
        if (!csv.open(QIODevice::ReadOnly) || !gz.open(QIODevice::WriteOnly))
            return false;
        gz.write(gzip(csv.readAll()));
    }
    return serveGzipDirectory(workDirectory);
}

bool DumpServer::serveGzipDirectory(const QString &gzipDirectory)
{
    m_gzipDirectory = gzipDirectory;
    if (!m_server.port() && !m_server.listen())
        return false;
    serveAll();
    return true;
}

void DumpServer::serveAll()
{
    for (const QString &name : dumpNames()) {
        LoopbackHttpServer::Response response;
        response.filePath = m_gzipDirectory + u'/' + name + u".csv.gz"_s;
        if (!m_lastModified.isEmpty())
            response.headers = {{"Last-Modified", m_lastModified}};
        m_server.setResponse(path(name), response);
    }
}

void DumpServer::setLastModified(const QByteArray &value)
{
    m_lastModified = value;
    serveAll();
}

void DumpServer::setResponse(const QString &name, const LoopbackHttpServer::Response &response)
{
    m_server.setResponse(path(name), response);
}

void DumpServer::setGzipBytes(const QString &name, const QByteArray &gzip)
{
    LoopbackHttpServer::Response response;
    response.body = gzip;
    if (!m_lastModified.isEmpty())
        response.headers = {{"Last-Modified", m_lastModified}};
    m_server.setResponse(path(name), response);
}
