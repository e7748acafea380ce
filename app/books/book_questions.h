// What is asked before books are begun.
#pragma once

#include <gtk/gtk.h>

#include <optional>
#include <string>

#include "app/books/book_list.h"

std::optional<double> FreeBytes(const std::string& folder);

// All of these: with the GDK lock held; false when the user wants not to begin.
bool AsksOfRoom(GtkWidget* parent, const char* title, const std::string& folder,
                const BookEstimate& needed);
// asBegun: those that can go on do so.
bool AsksOfUnfinished(GtkWidget* parent, const char* title, const BegunOtherwise& books,
                      bool& asBegun);
