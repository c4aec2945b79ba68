// The socket library: Windows needs it started before any connection; elsewhere
// sockets need no start and this is a no-op.
#pragma once

// 0 on success, else the platform's error number.
int startNetwork();
void stopNetwork();
