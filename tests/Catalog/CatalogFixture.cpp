// SPDX-License-Identifier: GPL-3.0-or-later
#include "CatalogFixture.h"

#include "RebrickableKit/RebrickableDatabaseBuilder.h"
#include "TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <zlib.h>

using namespace Qt::StringLiterals;

CatalogFixture::CatalogFixture()
{
    m_files = {
        {u"themes"_s, "id,name,parent_id\n"},
        {u"colors"_s, "id,name,rgb,is_trans\n"},
        {u"part_categories"_s, "id,name\n"},
        {u"parts"_s, "part_num,name,part_cat_id,part_material\n"},
        {u"part_relationships"_s, "rel_type,child_part_num,parent_part_num\n"},
        {u"elements"_s, "element_id,part_num,color_id,design_id\n"},
        {u"minifigs"_s, "fig_num,name,num_parts,img_url\n"},
        {u"sets"_s, "set_num,name,year,theme_id,num_parts,img_url\n"},
        {u"inventories"_s, "id,version,set_num\n"},
        {u"inventory_parts"_s, "inventory_id,part_num,color_id,quantity,is_spare,img_url\n"},
        {u"inventory_sets"_s, "inventory_id,set_num,quantity\n"},
        {u"inventory_minifigs"_s, "inventory_id,fig_num,quantity\n"},
    };
}

void CatalogFixture::addRows(const QString &table, const QByteArray &rows)
{
    Q_ASSERT(m_files.contains(table));
    m_files[table] += rows;
}

QString CatalogFixture::build(const QString &directory) const
{
    QDir().mkpath(directory);
    for (auto file = m_files.cbegin(); file != m_files.cend(); ++file) {
        QFile out(directory + u'/' + file.key() + u".csv"_s);
        if (!out.open(QIODevice::WriteOnly) || out.write(file.value()) != file.value().size())
            return {};
    }
    const QString output = directory + u"/rebrickable.sqlite"_s;
    RebrickableKit::RebrickableDatabaseBuilder::build(directory, output);
    return output;
}

QString CatalogFixture::buildFullCatalog(const QString &directory)
{
    const QString dumps = TestEnvironment::sharedDumpDirectory();
    if (dumps.isEmpty())
        return {};
    const QString output = directory + u"/rebrickable.sqlite"_s;
    if (QFileInfo::exists(output))
        return output;
    QDir().mkpath(directory);
    const QStringList names = QDir(dumps).entryList({u"*.csv.gz"_s}, QDir::Files);
    for (const QString &name : names) {
        gzFile in = gzopen(QFile::encodeName(dumps + u'/' + name).constData(), "rb");
        QFile out(directory + u'/' + name.chopped(3));
        if (!in || !out.open(QIODevice::WriteOnly))
            return {};
        QByteArray buffer(1 << 18, Qt::Uninitialized);
        int read = 0;
        while ((read = gzread(in, buffer.data(), unsigned(buffer.size()))) > 0)
            out.write(buffer.constData(), read);
        gzclose(in);
    }
    RebrickableKit::RebrickableDatabaseBuilder::build(directory, output);
    return output;
}
