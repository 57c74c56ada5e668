#pragma once
// The editor's bitmaps, drawn at build time and compiled into the plug-in as PNG files.
// Numbers and layouts are listed in resources/BitmapTable.h.

// Finds bitmap `id`: sets *png to its PNG bytes and *size to their count and answers true,
// or answers false (leaving both untouched) when there is no bitmap of that number.
bool findEmbeddedBitmap(int id, const unsigned char** png, unsigned long* size);
