#!/bin/sh
# Shows that check_architecture.sh lets a sound tree pass and finds each mistake in a broken one.
#
#   check_architecture_test.sh WORKING_FOLDER

set -u
here=$(cd "$(dirname "$0")" && pwd)
work=${1:?usage: check_architecture_test.sh WORKING_FOLDER}
bad=0

# A small tree: base, platform above it, runs/engine, app; every rule kept.
sound_tree() {
    rm -rf "$work"
    mkdir -p "$work/base" "$work/platform/linux" "$work/logs" "$work/runs/engine" "$work/app"
    cat > "$work/CMakeLists.txt" <<'END'
# from the bottom up
add_subdirectory(base)
add_subdirectory(platform)
add_subdirectory(logs)
add_subdirectory(runs)
add_subdirectory(app)
END
    echo 'add_subdirectory(engine)' > "$work/runs/CMakeLists.txt"
    echo 'vardelin_library(base PRIVATE fmt::fmt)' > "$work/base/CMakeLists.txt"
    printf 'vardelin_library(platform\n    SUBDIRS linux\n    PUBLIC vardelin_base # texts\n    PRIVATE fmt::fmt)\n' \
        > "$work/platform/CMakeLists.txt"
    echo 'vardelin_library(logs PRIVATE vardelin_platform)' > "$work/logs/CMakeLists.txt"
    echo 'vardelin_library(engine PUBLIC vardelin_platform PRIVATE vardelin_logs)' \
        > "$work/runs/engine/CMakeLists.txt"
    echo 'vardelin_library(app PUBLIC vardelin_engine)' > "$work/app/CMakeLists.txt"

    echo '#include <string>' > "$work/base/text.h"
    echo '#include "base/text.h"' > "$work/platform/machine.h"
    printf '#include "platform/machine.h"\n#include "base/text.h"\n' > "$work/platform/linux/machine.cpp"
    printf '#include "platform/machine.h"\n#include "base/text.h"\n' > "$work/logs/logs.cpp"
    echo '#include "base/text.h"' > "$work/runs/engine/engine.h"
    printf '#include "runs/engine/engine.h"\n#include "logs/logs.h"\n#include <zstd.h>\n' \
        > "$work/runs/engine/engine.cpp"
    printf '#include "runs/engine/engine.h"\n#include <QWidget>\n' > "$work/app/main.cpp"
}

passes() {
    if ! output=$(sh "$here/check_architecture.sh" "$work" 2>&1); then
        printf 'FAILED: %s is refused:\n%s\n' "$1" "$output"
        bad=1
    fi
}

# finds WHAT TEXT: the tree as it stands is refused, and the report holds TEXT.
finds() {
    if output=$(sh "$here/check_architecture.sh" "$work" 2>&1); then
        printf 'FAILED: %s is not found\n' "$1"
        bad=1
    elif ! printf '%s\n' "$output" | grep -qF -- "$2"; then
        printf 'FAILED: %s is reported otherwise:\n%s\n' "$1" "$output"
        bad=1
    fi
}

sound_tree
passes "a sound tree"

sound_tree
echo '#include "platform/machine.h"' >> "$work/base/text.h"
finds "an upward include" 'base/text.h:2: base includes platform, which stands above it'

sound_tree
echo '#include "platform/machine.h"' > "$work/base/text.cpp"
echo 'vardelin_library(base PUBLIC vardelin_platform)' > "$work/base/CMakeLists.txt"
finds "an upward link in a circle" 'base: links platform, which does not stand above it'
finds "an upward include that is linked" 'base/text.cpp:1: base includes platform'

sound_tree
echo '#include "logs/logs.h"' >> "$work/app/main.cpp"
finds "an include behind a PRIVATE link" 'app/main.cpp:3: app includes logs but does not link it'

sound_tree
echo '#include "platform/machine.h"' > "$work/logs/logs.h"
finds "a header with a PRIVATE link" 'logs/logs.h:1: a header of logs includes platform'

sound_tree
echo '#include <QString>' >> "$work/platform/linux/machine.cpp"
finds "a toolkit header in the logic" 'platform/linux/machine.cpp:3: a toolkit header'

sound_tree
echo '#include <QtWidgets/QLabel>' >> "$work/runs/engine/engine.cpp"
finds "a toolkit module in the logic" 'runs/engine/engine.cpp:4: a toolkit header'

for header in zstd.h zstd_errors.h sodium.h sodium/crypto_pwhash.h; do
    sound_tree
    echo "  #  include <$header>" >> "$work/logs/logs.cpp"
    finds "$header outside the engine" 'logs/logs.cpp:3: compression and encryption belong'
done

sound_tree
echo '#include "machine.h"' >> "$work/platform/linux/machine.cpp"
finds "an include by its bare name" 'platform/linux/machine.cpp:3: "machine.h" is not written from'

sound_tree
echo '#include "../base/text.h"' >> "$work/platform/linux/machine.cpp"
finds "an include by a relative path" '"../base/text.h" is not written from'

sound_tree
mkdir "$work/stray"
echo '#include "base/text.h"' > "$work/stray/stray.cpp"
finds "a folder that is no library" 'stray/stray.cpp: stands in no folder that is a library'

sound_tree
echo 'vardelin_library(logs PRIVATE vardelin_platfrom)' > "$work/logs/CMakeLists.txt"
finds "a link to nothing" 'logs: links vardelin_platfrom, which no folder builds'

rm -rf "$work"
if sh "$here/check_architecture.sh" "$work" 2>/dev/null; then
    echo 'FAILED: a tree that is not there passes'
    bad=1
fi

[ "$bad" -eq 0 ] && echo 'every mistake is found'
exit "$bad"
