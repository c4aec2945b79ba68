// The system clipboard. Windows: the clipboard as CF_TEXT. Elsewhere the process may
// offer `vistarig_clipboard_set` (the simulator stand-in does, and keeps the text for
// tests); without it the copy fails and the caller says so.
#pragma once

// True when the text reached a clipboard.
bool copyTextToClipboard(const char* text);
