// SPDX-License-Identifier: GPL-3.0-or-later
#include "DumpDirectory.h"

#include <RebrickableKit/CatalogSchema.h>

#include <QFile>
#include <QHash>

using namespace Qt::StringLiterals;
using namespace RebrickableKit;

DumpDirectory::DumpDirectory()
{
    for (const CatalogSchema::ImportTable &table : CatalogSchema::importTables())
        write(table.tableName, header(table.tableName) + '\n');
}

QByteArray DumpDirectory::header(const QString &name)
{
    static const QHash<QString, QByteArray> headers{
        {u"themes"_s, "id,name,parent_id"},
        {u"colors"_s, "id,name,rgb,is_trans,num_parts,num_sets,y1,y2"},
        {u"part_categories"_s, "id,name"},
        {u"parts"_s, "part_num,name,part_cat_id,part_material"},
        {u"part_relationships"_s, "rel_type,child_part_num,parent_part_num"},
        {u"elements"_s, "element_id,part_num,color_id,design_id"},
        {u"minifigs"_s, "fig_num,name,num_parts,img_url"},
        {u"sets"_s, "set_num,name,year,theme_id,num_parts,img_url"},
        {u"inventories"_s, "id,version,set_num"},
        {u"inventory_parts"_s, "inventory_id,part_num,color_id,quantity,is_spare,img_url"},
        {u"inventory_sets"_s, "inventory_id,set_num,quantity"},
        {u"inventory_minifigs"_s, "inventory_id,fig_num,quantity"},
    };
    return headers.value(name);
}

void DumpDirectory::write(const QString &name, const QByteArray &bytes)
{
    QFile file(filePath(name + u".csv"_s));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        qFatal("Cannot write the dump %s", qUtf8Printable(name));
}

void DumpDirectory::writeRows(const QString &name, const QList<QByteArray> &lines)
{
    QByteArray bytes = header(name) + '\n';
    for (const QByteArray &line : lines)
        bytes += line + '\n';
    write(name, bytes);
}

void DumpDirectory::writeSmallCatalog()
{
    writeRows(u"themes"_s, {"1,Technic,", "158,Star Wars,", "171,Ultimate Collector Series,158", "18,Space,"});
    writeRows(u"colors"_s, {"-1,[Unknown],0033B2,False,17,2,2000,2000", "0,Black,05131D,False,1,1,1957,2026",
                            "4,Red,C91A09,False,1,1,1957,2026", "47,Trans-Clear,FCFCFC,True,1,1,1990,2026"});
    writeRows(u"part_categories"_s, {"11,Bricks", "3,\"Bricks Sloped, Inverted\""});
    writeRows(u"parts"_s, {"3001,Brick 2 x 4,11,Plastic", "3001pr0001,\"Brick 2 x 4 with Print, Red\",11,Plastic",
                           "3039,Slope 45 2 x 2,3,Plastic", "973c01,Torso,11,Plastic"});
    writeRows(u"part_relationships"_s, {"P,3001pr0001,3001", "M,3039,3039b", "X,3001,3002"});
    writeRows(u"elements"_s, {"300121,3001,4,3001", "300126,3001,0,", "303921,3039,4"});
    writeRows(u"minifigs"_s, {"fig-000001,Han Solo,4,https://cdn.rebrickable.com/media/sets/fig-000001.jpg",
                              "fig-000002,Luke Skywalker 100% Pilot,5,"});
    writeRows(u"sets"_s, {"75192-1,Millennium Falcon,2017,171,7541,https://cdn.rebrickable.com/media/sets/75192-1.jpg",
                          "10179-1,Millennium Falcon - UCS,2007,171,5195,",
                          "42083-1,Bugatti Chiron,2018,1,3599,",
                          "6990-1,Futuron Monorail Transport System,1987,18,741,"});
    writeRows(u"inventories"_s, {"1,1,75192-1", "2,2,75192-1", "3,1,10179-1", "4,1,fig-000001"});
    writeRows(u"inventory_parts"_s,
              {"1,3001,4,10,False,https://cdn.rebrickable.com/media/parts/elements/300121.jpg",
               "2,3001,4,12,False,https://cdn.rebrickable.com/media/parts/elements/300121.jpg",
               "2,3039,0,2,True,https://cdn.rebrickable.com/media/parts/ldraw/0/3039.png",
               "2,973c01,4,1,False,", "3,3001,0,3,False,https://example.com/3001.png"});
    writeRows(u"inventory_sets"_s, {"2,42083-1,1", "1,6990-1,1"});
    writeRows(u"inventory_minifigs"_s, {"2,fig-000001,1", "2,fig-000002,2", "1,fig-000002,9"});
}
