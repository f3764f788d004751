#pragma once

#include <string>

class C3DFrameViewer;

/// What a script asks of the viewer, as one line of JSON; false for a name that is not known.
bool AnswerQuery(C3DFrameViewer& frame, const std::string& name, std::string& answer);
/// "selection|hidden|…"
std::string GetQueryNames();
