#!/usr/bin/env bash
# Gathers every qtTrId() key with its //% English text from the sources into the
# id-based translation source. Run after adding or changing a localised text.
set -euo pipefail
cd "$(dirname "$0")/.."
lupdate=/usr/lib/qt6/bin/lupdate
[ -x "$lupdate" ] || lupdate=$(command -v lupdate)
"$lupdate" -locations none -no-obsolete -source-language en -target-language en \
    src -ts src/Tessaloom/Resources/translations/tessaloom_en.ts
