// Paths, folders and whole-file operations.
//
// Path texts are plain bytes of at most 259 characters; every `out` is a buffer of at least 260, is
// always terminated and may not overlap an input. "/" and "\" both separate when a path is taken
// apart; "/" is what joining inserts. Nothing here reports more than a bool; any thread, the
// choosers on the GUI thread only.
#pragma once

#include <string>
#include <vector>

struct _GtkWidget;  // the choosers' parent window; nothing else here knows the toolkit

class LFile {
public:
    // --- paths
    static void _FilePathCat(char* path, const char* name);
    static void _FilePathCat(char* path, const char* name, const char* ext);  // no separator
    static void _GetFolderFromPath(char* out, const char* path);
    static void _GetFileFromPath(char* out, const char* path);
    // The file part without its extension.
    static void _GetFileNameFromPath(char* out, const char* path);
    // From the last dot of the file part on, dot included. A dot that begins the whole path begins
    // no extension.
    static void _GetFileExtensionFromPath(char* out, const char* path);
    // A path without an extension is copied as it is: nothing is appended.
    static void _ApplyNewFileExtension(char* out, const char* path, const char* ext);
    // Makes a file name from free text; true when anything is left.
    static bool PreprocessName(const char* in, char* out);
    // The path as seen from the folder base, with ".." steps; a path that shares no root with it is
    // copied.
    static void MakeRelativeFilePath(char* out, const char* path, const char* base);

    // --- folders; failures show as missing folders. The first three are made as store_file.h says.
    static void GetSharedDataFolderApp(char* out);
    static void GetSharedDataFolderAppSubFolder(const char* name, char* out);
    static void GetUserDataFolderAppSubFolder(const char* name, char* out);
    // Links to folders are not followed; what is neither file nor folder is left out.
    static void CopyFolderFiles(const char* from, const char* to);
    // Its sub-folders keep it alive; a path that names a file has the file removed.
    static void DeleteFolderAndFiles(const char* folder);
    static void DeleteFolderTree(const char* folder);  // links are removed, never followed
    class FolderIterator;                              // folder_iterator.h
    class FolderIteratorAllFiles;

    // --- files
    static bool CopyFile(const char* from, const char* to);  // false only when one cannot be opened
    static bool TestFileShareReadBlocked(const char* path);
    static bool TestFileShareWriteBlocked(const char* path);
    static bool IsErrorAlreadyExists();  // both look at errno
    static bool IsErrorSharingViolation();

    // --- file choosers (target foundation_dialogs). Paths are of any length: what the system
    // cannot take is refused where it is opened, never cut. folder "" starts in the home folder.
    // Filters: each a name, a NUL, patterns separated by ";", and a NUL; a NUL more ends them; null
    // for none. On acceptance path receives the file and folder its folder; on cancel path is
    // emptied.
    using BrowseMultiplePaths = std::vector<std::string>;
    static bool BrowseReadFilePath(_GtkWidget* parent, std::string& path, const char* title,
                                   std::string& folder, const char* filters);
    // path as it comes suggests a name. filter: index of the filter that is preset, then of the one
    // that was chosen; a name without an extension receives that of its first pattern.
    static bool BrowseSaveFilePath(_GtkWidget* parent, std::string& path, const char* title,
                                   std::string& folder, const char* filters, int& filter);
    static bool BrowseMultipleReadFiles(_GtkWidget* parent, BrowseMultiplePaths& paths,
                                        const char* title, std::string& folder,
                                        const char* filters);
    static bool BrowseFolder(_GtkWidget* parent, std::string& path, const char* title);
};
