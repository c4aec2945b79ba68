#include "data/targets.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <vector>

#include "data/aircraft_files.h"
#include "data/kept_copies.h"
#include "data/text_io.h"
#include "data/user_messages.h"
#include "platform/runtime.h"

namespace {

Target* grid[kTargetGridRows][kTargetGridColumns];
int gridCount = 0;
// The cells that hold a list, so that clearing and writing don't walk all 65,341.
std::vector<int> occupiedCells;

constexpr int kNameLimit = 70;
constexpr int kDateLimit = 25;
constexpr int kLineLimit = 2000;

const char kTargetsHeader[] = "Name, Date, Latitude, Longitude, Elevation in Meters\n";

// Commas would shift the columns of the line and control characters split it; a name
// or date holds neither, so whatever is in the grid writes and reads back the same.
// A double quote at the front of a field would make the reader take the line for a
// spreadsheet's quoted export: it becomes a single quote.
void cleanField(char* text) {
    for (char* p = text; *p; ++p)
        if (*p == ',' || static_cast<unsigned char>(*p) < 0x20 || *p == 0x7f) *p = ' ';
    char* first = text;
    while (*first == ' ' || *first == '\t') ++first;
    if (*first == '"') *first = '\'';
}

void cutTrailingBlanks(char* text) {
    size_t length = std::strlen(text);
    while (length > 0 && std::strchr(" \t\r\n\f\v", text[length - 1])) --length;
    text[length] = 0;
}

bool blankText(const char* text) {
    for (; *text; ++text)
        if (!std::strchr(" \t\r\n\f\v", *text)) return false;
    return true;
}

std::string number(double value) {
    char text[400];
    formatFixed(text, sizeof text, value, 6);
    return text;
}

bool isHeader(char** tokens) {
    char first[kLineLimit + 1], second[kLineLimit + 1];
    copyText(first, sizeof first, tokens[0], kLineLimit);
    copyText(second, sizeof second, tokens[1], kLineLimit);
    return std::strcmp(trimText(first), "Name") == 0 && std::strcmp(trimText(second), "Date") == 0;
}

}  // namespace

Target* targetCell(int row, int column) {
    if (row < 0 || row >= kTargetGridRows || column < 0 || column >= kTargetGridColumns) return nullptr;
    return grid[row][column];
}

bool targetCellOf(double latitude, double longitude, int* row, int* column) {
    if (!(latitude >= -90.0 && latitude <= 90.0 && longitude >= -180.0 && longitude <= 180.0)) return false;
    *row = int(std::trunc(latitude)) + 90;
    *column = int(std::trunc(longitude)) + 180;
    return true;
}

int targetCount() { return gridCount; }

void clearTargets() {
    for (int cell : occupiedCells) {
        Target*& head = grid[cell / kTargetGridColumns][cell % kTargetGridColumns];
        while (head) {
            Target* next = head->nextInCell;
            delete head;
            head = next;
        }
    }
    occupiedCells.clear();
    gridCount = 0;
}

std::string targetsPath() {
    std::string folder;
    pluginDirectory(folder);
    return folder + "MyTargets/MyTargets.csv";
}

Target* addTarget(const char* name, const char* date, double latitude, double longitude, double elevation,
                  int32_t kind) {
    int row, column;
    if (!targetCellOf(latitude, longitude, &row, &column)) return nullptr;
    Target fresh;
    std::memset(&fresh, 0, sizeof fresh);
    copyText(fresh.name, name ? name : "", kNameLimit);
    cleanField(fresh.name);
    cutTrailingBlanks(fresh.name);
    // An empty name would vanish from its line in the file.
    if (!fresh.name[0]) copyText(fresh.name, "Target");
    copyText(fresh.date, date ? date : localTimeText().c_str(), kDateLimit);
    cleanField(fresh.date);
    if (blankText(fresh.date)) copyText(fresh.date, localTimeText().c_str(), kDateLimit);
    fresh.latitude = latitude;
    fresh.longitude = longitude;
    fresh.elevation = std::isfinite(elevation) ? elevation : 0.0;
    fresh.kind = kind;

    Target** link = &grid[row][column];
    for (; *link; link = &(*link)->nextInCell) {
        Target* existing = *link;
        if (std::strcmp(existing->name, fresh.name) == 0) {
            std::memcpy(existing->name, fresh.name, sizeof fresh.name);
            std::memcpy(existing->date, fresh.date, sizeof fresh.date);
            existing->latitude = fresh.latitude;
            existing->longitude = fresh.longitude;
            existing->elevation = fresh.elevation;
            return existing;
        }
    }
    Target* added = new Target(fresh);
    if (!grid[row][column]) occupiedCells.push_back(row * kTargetGridColumns + column);
    *link = added;
    ++gridCount;
    return added;
}

void readTargetsText(const char* text, size_t size, ReadLosses* losses) {
    ReadLosses counted;
    static char line[kLineLimit + 1];
    char* tokens[8];
    TextLines lines(text, size);
    counted.unreadableBytes = countControlBytes(text, size);
    while (lines.next(line, sizeof line)) {
        int count = splitDelimitedLine(line, tokens, 8, ',');
        if (count == 0) continue;
        if (count < 5) {
            logMessage("The target file does not have the minimum number of target parameters");
            counted.shortRows = 1;
            while (lines.next(line, sizeof line)) {
                const char* p = line;
                while (*p == ' ' || *p == '\t' || *p == ',') ++p;
                if (*p) ++counted.rowsAfterShortRow;
            }
            break;
        }
        if (isHeader(tokens)) continue;
        if (count > 5) ++counted.extraValues;
        if (std::strlen(tokens[0]) > size_t(kNameLimit) || std::strlen(tokens[1]) > size_t(kDateLimit))
            ++counted.cutTexts;
        double latitude = 0, longitude = 0, elevation = 0;
        bool parsed = parseDouble(tokens[2], &latitude) && parseDouble(tokens[3], &longitude) &&
                      parseDouble(tokens[4], &elevation);
        if (parsed && !(isWholeNumber(tokens[2], false) && isWholeNumber(tokens[3], false) &&
                        isWholeNumber(tokens[4], false)))
            ++counted.badNumbers;
        if (parsed && !(latitude >= -90.0 && latitude <= 90.0)) {
            logMessage("Invalid Latitude detected while reading Target %s, Latitude: %s Longitude: %s Elevation: %s",
                       tokens[0], number(latitude).c_str(), number(longitude).c_str(), number(elevation).c_str());
            parsed = false;
        } else if (parsed && !(longitude >= -180.0 && longitude <= 180.0)) {
            logMessage("Invalid Longitude detected while reading Target %s, Latitude: %s Longitude: %s Elevation: %s",
                       tokens[0], number(latitude).c_str(), number(longitude).c_str(), number(elevation).c_str());
            parsed = false;
        }
        if (!parsed) {
            logMessage("Unexpected error reading target parameters");
            ++counted.droppedRows;
            continue;
        }
        addTarget(tokens[0], tokens[1], latitude, longitude, elevation, 0);
    }
    counted.unreadableBytes += lines.droppedBytes + lines.cutLines;
    if (losses) *losses = counted;
}

void readTargetsFrom(std::FILE* stream, ReadLosses* losses) {
    std::string text;
    char chunk[65536];
    size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, stream)) > 0) text.append(chunk, got);
    readTargetsText(text.data(), text.size(), losses);
}

void readTargets() {
    clearTargets();
    std::string path = targetsPath();
    std::FILE* stream = std::fopen(path.c_str(), "rb");
    if (!stream) {
        if (fileMissing(path.c_str())) {
            logMessage("Unable to read target file: %s, a new one will be created", path.c_str());
            writeTargets();
        } else {
            // There but unreadable: an empty list written over it would lose every target.
            ReadLosses unread;
            unread.unreadableBytes = 1;
            protectPartlyReadFile(path.c_str(), "Target file", unread);
        }
        return;
    }
    ReadLosses losses;
    readTargetsFrom(stream, &losses);
    std::fclose(stream);
    protectPartlyReadFile(path.c_str(), "Target file", losses);
}

std::string formatTargets() {
    std::string out = kTargetsHeader;
    std::vector<int> cells = occupiedCells;
    std::sort(cells.begin(), cells.end());  // rows first, then columns
    for (int cell : cells)
        for (Target* t = grid[cell / kTargetGridColumns][cell % kTargetGridColumns]; t; t = t->nextInCell) {
            out += t->name;
            out += ',';
            out += t->date;
            out += ',';
            out += number(t->latitude);
            out += ',';
            out += number(t->longitude);
            out += ',';
            out += number(t->elevation);
            out += '\n';
        }
    return out;
}

bool writeTargets() {
    std::string path = targetsPath();
    std::string why;
    // The folder is made when it is missing: a fresh install has none, and its first
    // saved target would otherwise fail to be written.
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    if (replacingForbidden(path.c_str()) || !replaceFileAtomically(path.c_str(), formatTargets(), &why)) {
        std::string text = "Unable to write target file: " + path;
        logMessage("%s", text.c_str());
        if (!why.empty()) logMessage("%s was left as it was: %s", path.c_str(), why.c_str());
        showMessageBox("Error", text);
        return false;
    }
    return true;
}
