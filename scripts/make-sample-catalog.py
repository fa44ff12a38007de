#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Cuts the small catalog that ships with Tessaloom out of the full Rebrickable dumps.

    scripts/make-sample-catalog.py DUMP_DIR OUTPUT_DIR

DUMP_DIR holds the twelve NAME.csv.gz files. The subset is consistent with itself: the
chosen sets (well-known ones plus a fixed-seed spread across every decade), the sets they
contain, their themes with all ancestors, all their inventories and inventory lines, the
minifigs in them and the minifigs' own inventories, every part and element those lines
name, the relationships between kept parts, and all colours and part categories. Rows are
written as the dumps have them, in the dumps' order, so the builder sees real data.
"""
import csv
import gzip
import io
import os
import random
import sys

FAMOUS_SETS = [
    "75192-1", "7965-1", "10179-1", "75257-1", "10294-1", "10497-1", "21318-1", "42115-1",
    "10276-1", "71043-1", "6080-1", "375-2", "928-1", "6990-1", "8880-1", "10030-1",
    "10221-1", "75159-1", "10188-1", "21322-1", "10305-1", "31120-1", "60337-1", "76178-1",
    "4000004-1", "6399-1", "7191-1", "10256-1", "42143-1", "10300-1",
]
SETS_PER_DECADE = 55
SEED = 20260402


def read(dump_dir, name):
    with gzip.open(os.path.join(dump_dir, name + ".csv.gz"), "rt", encoding="utf-8", newline="") as f:
        text = f.read()
    rows = list(csv.reader(io.StringIO(text)))
    return rows[0], rows[1:]


def write(output_dir, name, header, rows):
    with open(os.path.join(output_dir, name + ".csv"), "w", encoding="utf-8", newline="") as f:
        writer = csv.writer(f, lineterminator="\n")
        writer.writerow(header)
        writer.writerows(rows)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    dump_dir, output_dir = sys.argv[1], sys.argv[2]
    os.makedirs(output_dir, exist_ok=True)
    tables = {name: read(dump_dir, name) for name in (
        "themes", "colors", "part_categories", "parts", "part_relationships", "elements",
        "minifigs", "sets", "inventories", "inventory_parts", "inventory_sets", "inventory_minifigs")}

    set_header, sets = tables["sets"]
    by_decade = {}
    for row in sets:
        if row[4] != "0":  # sets with parts make a better sample
            by_decade.setdefault(int(row[2]) // 10, []).append(row[0])
    chosen = {number for number in FAMOUS_SETS if any(r[0] == number for r in sets)}
    rng = random.Random(SEED)
    for decade in sorted(by_decade):
        numbers = sorted(by_decade[decade])
        chosen.update(rng.sample(numbers, min(SETS_PER_DECADE, len(numbers))))

    _, inventories = tables["inventories"]
    # Sets inside chosen sets' inventories come along, so inventory_sets stays consistent.
    inventory_of_set = {}
    for row in inventories:
        inventory_of_set.setdefault(row[2], []).append(row[0])
    _, inventory_sets = tables["inventory_sets"]
    chosen_inventories = {i for s in chosen for i in inventory_of_set.get(s, [])}
    for row in inventory_sets:
        if row[0] in chosen_inventories:
            chosen.add(row[1])
    chosen_inventories = {i for s in chosen for i in inventory_of_set.get(s, [])}

    _, inventory_minifigs = tables["inventory_minifigs"]
    chosen_figs = {row[1] for row in inventory_minifigs if row[0] in chosen_inventories}
    chosen_inventories |= {i for f in chosen_figs for i in inventory_of_set.get(f, [])}

    _, inventory_parts = tables["inventory_parts"]
    kept_lines = [row for row in inventory_parts if row[0] in chosen_inventories]
    chosen_parts = {row[1] for row in kept_lines}
    part_colors = {(row[1], row[2]) for row in kept_lines}

    theme_header, themes = tables["themes"]
    parent_of = {row[0]: row[2] for row in themes}
    chosen_themes = set()
    for row in sets:
        if row[0] in chosen:
            theme = row[3]
            while theme and theme not in chosen_themes:
                chosen_themes.add(theme)
                theme = parent_of.get(theme, "")

    write(output_dir, "themes", theme_header, [r for r in themes if r[0] in chosen_themes])
    write(output_dir, "colors", *tables["colors"])
    write(output_dir, "part_categories", *tables["part_categories"])
    parts_header, parts = tables["parts"]
    write(output_dir, "parts", parts_header, [r for r in parts if r[0] in chosen_parts])
    rel_header, relationships = tables["part_relationships"]
    write(output_dir, "part_relationships", rel_header,
          [r for r in relationships if r[1] in chosen_parts and r[2] in chosen_parts])
    element_header, elements = tables["elements"]
    write(output_dir, "elements", element_header, [r for r in elements if (r[1], r[2]) in part_colors])
    fig_header, minifigs = tables["minifigs"]
    write(output_dir, "minifigs", fig_header, [r for r in minifigs if r[0] in chosen_figs])
    write(output_dir, "sets", set_header, [r for r in sets if r[0] in chosen])
    inv_header, _ = tables["inventories"]
    write(output_dir, "inventories", inv_header, [r for r in inventories if r[0] in chosen_inventories])
    write(output_dir, "inventory_parts", tables["inventory_parts"][0], kept_lines)
    write(output_dir, "inventory_sets", tables["inventory_sets"][0],
          [r for r in inventory_sets if r[0] in chosen_inventories])
    write(output_dir, "inventory_minifigs", tables["inventory_minifigs"][0],
          [r for r in inventory_minifigs if r[0] in chosen_inventories])
    print(f"{len(chosen)} sets, {len(chosen_themes)} themes, {len(chosen_parts)} parts, "
          f"{len(kept_lines)} inventory lines")


if __name__ == "__main__":
    main()
