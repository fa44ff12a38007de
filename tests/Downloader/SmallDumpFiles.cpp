// SPDX-License-Identifier: GPL-3.0-or-later
#include "SmallDumpFiles.h"

#include "GzipTestFiles.h"

#include <RebrickableKit/RebrickableDownloader.h>

#include <QFile>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace {

struct DumpShape
{
    QByteArray header;
    qint64 rows = 0;
};

// The published header lines, with row counts that differ from dump to dump so that a
// file delivered under another dump's name shows.
const QHash<QString, DumpShape> &shapes()
{
    static const QHash<QString, DumpShape> shapes = {
        {u"themes"_s, {"id,name,parent_id", 49}},
        {u"colors"_s, {"id,name,rgb,is_trans,num_parts,num_sets,y1,y2", 27}},
        {u"part_categories"_s, {"id,name", 8}},
        {u"parts"_s, {"part_num,name,part_cat_id,part_material", 3100}},
        {u"part_relationships"_s, {"rel_type,child_part_num,parent_part_num", 356}},
        {u"elements"_s, {"element_id,part_num,color_id,design_id", 1089}},
        {u"minifigs"_s, {"fig_num,name,num_parts,img_url", 167}},
        {u"sets"_s, {"set_num,name,year,theme_id,num_parts,img_url", 2645}},
        {u"inventories"_s, {"id,version,set_num", 450}},
        {u"inventory_parts"_s, {"inventory_id,part_num,color_id,quantity,is_spare,img_url", 4120}},
        {u"inventory_sets"_s, {"inventory_id,set_num,quantity", 49}},
        {u"inventory_minifigs"_s, {"inventory_id,fig_num,quantity", 249}},
    };
    return shapes;
}

// The header, then `rows` lines of a running number and random fields, all CRLF-ended.
QByteArray makeCsv(const DumpShape &shape, QRandomGenerator &random)
{
    const qsizetype fields = shape.header.count(',') + 1;
    QByteArray csv = shape.header + "\r\n";
    for (qint64 row = 1; row <= shape.rows; ++row) {
        csv += QByteArray::number(row);
        for (qsizetype field = 1; field < fields; ++field)
            csv += ',' + QByteArray::number(random.generate(), 36);
        csv += "\r\n";
    }
    return csv;
}

} // namespace

SmallDumpFiles::SmallDumpFiles(const QString &folder)
    : m_folder(folder)
{
    // A fixed seed: every run serves the same bytes.
    QRandomGenerator random(2026);
    for (const QString &name : RebrickableKit::RebrickableDownloader::dumpNames()) {
        const DumpShape shape = shapes().value(name);
        const QByteArray csv = makeCsv(shape, random);
        const QByteArray packed = GzipTestFiles::compress(csv);
        QFile file(path(name));
        if (packed.isEmpty() || !file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(packed) != packed.size())
            m_valid = false;
        m_rows.insert(name, shape.rows);
        m_csv.insert(name, csv);
    }
}

QString SmallDumpFiles::path(const QString &name) const
{
    return m_folder + u'/' + name + u".csv.gz"_s;
}
