// What the program keeps in its users' homes.
#pragma once

// Removes settings, logs and the last speech of every account, and of whoever runs this. Leaves
// what belongs to no one of them: a link in the place of a folder is not followed.
void RemoveUsersData();
