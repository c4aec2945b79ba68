// The camera file: one comma-separated row of 70 columns per camera, with the file's
// own values repeated on every row. Loading switches the working set between the
// aircraft's file and an airport's file; saving replaces the file on disk whole.
#pragma once

#include <cstdio>
#include <string>

#include "data/camera_set.h"
#include "data/kept_copies.h"

constexpr int kCameraColumns = 70;
constexpr int kCameraMinColumns = 10;
constexpr int kCameraLineLimit = 2000;

// Null or kind 0: the aircraft's file (per-model, else "Vistarig.csv", else a new
// one); kind 1: the airport's. False only when a row had too few columns.
bool loadCameraFile(CameraFile* file);
// Writes the working set to activeFile's path; false when it could not be written.
bool saveCameraFile(bool announce, bool backup);
// Adds one camera from a split row to the working set; false when a limit stops it.
bool readCameraRow(char** tokens, int count);
// Fills the totals and file columns of `file` from the file at its path, without
// touching the working set.
void analyseCameraFile(CameraFile* file);
// The same without the log line, for the community scan thread (which may not call the
// simulator): false when the file can't be opened.
bool analyseCameraFileQuietly(CameraFile* file);
// Whether the working set holds changes made since it was last loaded or saved.
bool workingSetHasUnsavedEdits();
// Keeps the working set's unsaved edits, if any, as the autosave of its file, and tells
// the user where (before the set is replaced, and when the plug-in is disabled).
void autosaveUnsavedEdits();
// Whether the aircraft's per-model file can be read; "Vistarig.csv" doesn't count.
bool cameraFileExists();
// The aircraft's file again, with category 0 and its camera 0 selected.
void restoreAllCameras();

// ---- the two halves of the format, free of the file system, for tests, the fuzzer
// and the benchmark.
// Reads rows into the working set (which the caller has cleared) and the file columns
// into `file`; false when a row had fewer than 10 tokens (reading stops there). Besides
// the plain format it reads what spreadsheet programs write: a byte order mark, quoted
// fields, ';' between values with decimal commas. What could not be taken over is
// counted in `losses` when given.
bool readCameraText(const char* text, size_t size, CameraFile& file, ReadLosses* losses = nullptr);
bool readCameraRows(std::FILE* stream, CameraFile& file, ReadLosses* losses = nullptr);
// Makes the working set writable so that it reads back the same: commas and control
// characters in names become blanks, names are cut to 30 characters, empty and
// repeated names get numbered ones, the file texts are cleaned.
void prepareSetForWriting(CameraFile& file);
// The whole file's text for the working set (header and rows).
std::string formatCameraFile(const CameraFile& file);
// The same for any set; `fingerprint` leaves out what changes without the user (the
// simulator's field of view, the aircraft's name, free cameras' local positions).
std::string formatCameraSet(const CameraSet& set, const CameraFile& file, bool fingerprint);
// What a save hands to the atomic file writer: the set made ready for writing, as text.
std::string cameraFileText(CameraFile& file);
// The header line, newline included.
const char* cameraFileHeader();
