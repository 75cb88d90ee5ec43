#!/bin/sh
# Compares what the folders of a source tree include with what they link.
#
#   check_architecture.sh SRC      SRC is the folder that holds base/, platform/, ...
#
# Read are SRC/CMakeLists.txt (the order: a folder may link only what stands above it), the
# vardelin_library() line of each folder, and the #include lines. Reported, one line each, are
#   - a link to a folder that does not stand above,
#   - an include of a folder that is not linked, or not PUBLIC where a header includes it,
#   - an include that stands above the folder that includes it,
#   - a project include that is not written from SRC,
#   - a toolkit header outside ui/ and app/; zstd or sodium outside runs/engine/,
#   - a folder with sources that is no library.
# Exit code 0 where nothing is reported, 1 where something is, 2 where the tree cannot be read.

set -u
src=${1:?usage: check_architecture.sh SRC}
cd "$src" || exit 2
[ -f CMakeLists.txt ] || {
    echo "$src/CMakeLists.txt is missing" >&2
    exit 2
}

lists=$(find . -name CMakeLists.txt | sed 's|^\./||' | LC_ALL=C sort)
code=$(find . \( -name '*.h' -o -name '*.cpp' \) | sed 's|^\./||' | LC_ALL=C sort)

# The lists come first: by the time that code is read, links and order are known.
# shellcheck disable=SC2086 # one argument a file; no name in the tree holds a blank
LC_ALL=C awk '
function report(text) { print text; bad = 1 }

# The library folder that a path below the root belongs to, or "".
function folderOf(path,    best, name) {
    best = ""
    for (name in library)
        if (index(path, name "/") == 1 && length(name) > length(best))
            best = name
    return best
}

# Whether `from` reaches `to` over PUBLIC links alone, in any number of steps. Links that run up are
# not followed: they are reported by themselves, and a circle would have no end.
function reaches(from, to,    name, second) {
    for (name in isPublic) {
        if (index(name, from SUBSEP) != 1)
            continue
        second = substr(name, length(from) + 2)
        if (order[second] >= order[from])
            continue
        if (second == to || reaches(second, to))
            return 1
    }
    return 0
}

# A link counts, PUBLIC or not, and behind it what it links PUBLIC.
function mayInclude(from, to,    name, second) {
    for (name in isLink) {
        if (index(name, from SUBSEP) != 1)
            continue
        second = substr(name, length(from) + 2)
        if (second == to || reaches(second, to))
            return 1
    }
    return 0
}

# Reads one list file whole: add_subdirectory lines and the vardelin_library call.
function readList(file, text,    folder, count, words, i, kind, name) {
    folder = file
    sub(/\/?CMakeLists\.txt$/, "", folder)
    gsub(/#[^\n]*/, "", text)
    gsub(/[()]/, " ( ", text)
    count = split(text, words, /[ \t\n]+/)
    kind = ""
    for (i = 1; i <= count; i++) {
        if (words[i] == "add_subdirectory" && words[i + 1] == "(") {
            children[folder] = children[folder] " " (folder == "" ? "" : folder "/") words[i + 2]
        } else if (words[i] == "vardelin_library" && words[i + 1] == "(") {
            name = words[i + 2]
            library[folder] = name
            folderByTarget["vardelin_" name] = folder
            kind = "NONE"
            i += 2
        } else if (words[i] == "(") {
            kind = ""
        } else if (words[i] ~ /^(PUBLIC|PRIVATE|SUBDIRS)$/) {
            if (kind != "")
                kind = words[i]
        } else if (kind == "PUBLIC" || kind == "PRIVATE") {
            if (words[i] ~ /^vardelin_/)
                linkLines[folder] = linkLines[folder] " " kind ":" words[i]
        }
    }
}

# Numbers the folders in the order of their add_subdirectory lines, a folder behind its own.
function number(folder,    count, names, i) {
    count = split(children[folder], names, " ")
    for (i = 1; i <= count; i++)
        number(names[i])
    order[folder] = ++last
}

function resolveLinks(    folder, count, names, i, part, target) {
    number("")
    for (folder in library) {
        if (!(folder in order))
            report(folder ": no add_subdirectory line leads to it")
        count = split(linkLines[folder], names, " ")
        for (i = 1; i <= count; i++) {
            split(names[i], part, ":")
            if (!(part[2] in folderByTarget)) {
                report(folder ": links " part[2] ", which no folder builds")
                continue
            }
            target = folderByTarget[part[2]]
            isLink[folder, target] = 1
            if (part[1] == "PUBLIC")
                isPublic[folder, target] = 1
            if (order[target] >= order[folder])
                report(folder ": links " target ", which does not stand above it in CMakeLists.txt")
        }
    }
}

function checkCode(where, file, line,    from, to, path) {
    if (line !~ /^[ \t]*#[ \t]*include[ \t]*[<"]/)
        return
    includes++
    path = line
    sub(/^[ \t]*#[ \t]*include[ \t]*/, "", path)
    from = folderOf(file)
    if (from == "" && !((file) in complained)) {
        complained[file] = 1
        report(file ": stands in no folder that is a library")
    }
    if (path ~ /^<Q[A-Z]/ || path ~ /^<Qt/ || path ~ /^"Q[A-Z]/) {
        if (file !~ /^(ui|app)\//)
            report(where ": a toolkit header outside ui/ and app/: " path)
        return
    }
    if (path ~ /^[<"](zstd|zstd_errors|zdict|sodium)(\.h|\/)/) {
        if (from != "runs/engine")
            report(where ": compression and encryption belong to runs/engine alone: " path)
        return
    }
    if (path !~ /^"/)
        return
    path = substr(path, 2)
    sub(/".*/, "", path)
    to = folderOf(path)
    if (to == "") {
        report(where ": \"" path "\" is not written from the root of the sources")
        return
    }
    if (to == from || from == "")
        return
    if (order[to] >= order[from])
        report(where ": " from " includes " to ", which stands above it")
    else if (!mayInclude(from, to))
        report(where ": " from " includes " to " but does not link it")
    else if (file ~ /\.h$/ && !reaches(from, to))
        report(where ": a header of " from " includes " to ", so that link has to be PUBLIC")
}

FNR == 1 && current != "" && current ~ /CMakeLists\.txt$/ { readList(current, text); text = "" }
FNR == 1 { current = FILENAME }
current ~ /CMakeLists\.txt$/ { text = text "\n" $0; next }
!resolved { resolveLinks(); resolved = 1 }
{ checkCode(current ":" FNR, current, $0) }

END {
    if (current ~ /CMakeLists\.txt$/)
        readList(current, text)
    if (!resolved)
        resolveLinks()
    for (name in library)
        libraries++
    printf "%d folders, %d include lines\n", libraries, includes > "/dev/stderr"
    exit bad
}
' $lists $code
