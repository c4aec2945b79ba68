// The contact sheet: small copies of the pictures a run takes, each with a caption
// (frame, camera, what the run was doing), laid out on one PNG for a reviewer.
#pragma once

#include <string>

// Takes the screen of the last frame as one picture of the sheet. False when nothing
// can be drawn (a run without drawing).
bool addContactPicture(const std::string& doing);
int contactPictureCount();
// Writes the sheet (a temporary file renamed); false with the reason in error.
bool writeContactSheet(const std::string& path, std::string& error);
// The camera names of a camera file's text by the plug-in's SelectedCamera number
// (category times 150 plus the camera's place in it).
void learnCameraNames(const std::string& cameraFileText);
std::string cameraName();
