// What the process keeps until it ends.
#pragma once

/// For objects of one thread. Leak checkers shall find what is meant to be never deleted: a pointer to it
/// stays in a list that no static destructor takes away.
void keepForever(const void *object);
