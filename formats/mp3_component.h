// Where optional add-on programs stand.
#pragma once

// Looks for the component's folder under the home folder's "components", then under the machine's
// "/opt/quillon", then in the build that this program stands in. True: path (260 bytes) is the
// program file inside it.
bool FindComponent(const char* name, char* path);

// The same; when there is none, path names a fresh empty file in /tmp, which is left there.
bool GetComponentPath(const char* name, char* path);
