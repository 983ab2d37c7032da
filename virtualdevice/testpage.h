// The pages that a printer prints to show how it prints.
#pragma once

#include <string>

/// A PDF document with one square page of INCHES by INCHES: a frame, two rulers and a headline.
std::string testPage(int inches);
