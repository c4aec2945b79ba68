// The Control Panel's two community popups: "Share Community File" (author, version
// and the upload) and "Browse Community Files" (the community folder's files as the
// scan read them, a filter, and importing one as the aircraft's set). Each draws its
// modal popup by name every frame; the state of both survives between openings.
#pragma once

#include <string>

void buildSharePopup();
void buildBrowsePopup();

// Opening the share popup clears its complaint.
void clearShareError();

// The browser's list after a filter (also for tests): rebuilds the filtered list from
// the community scan's list and returns the size of the whole list.
int applyCommunityFilter();
// The filter as typed (capitals) and the selection, from 1; 0 nothing selected.
char* communityFilterText();
int& communitySelection();
int communityFilteredCount();
