// Tells the posts of a thread from the labels around them: who wrote how much and joined when,
// dates, buttons.
#pragma once

#include <vector>

#include "documents/page_parts.h"

// Marks as left out what stands beside the posts within this part, when most of its prose is posts.
// Names of their writers and headings stay, and whatever is long enough to be prose. What parts
// hold must be summed up, and is not any more afterwards.
void LeaveOutAroundPosts(std::vector<PagePart>& parts, std::size_t article, PageTitle title);
