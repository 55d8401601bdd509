// app/webassets.h - the browser front-end's files (web/ and the chart
// library), built into the program by cmake/EmbedWeb.cmake so that the page
// works offline and nothing needs installing beside the program.
#pragma once

#include <cstddef>

struct WebAsset {
    const char *path;  // as in a URL: "/", "/app.js"
    const char *type;  // its Content-Type
    const unsigned char *data;
    size_t size;
};

// The file served at path, or null.
const WebAsset *FindWebAsset(const char *path);
