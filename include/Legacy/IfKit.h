#pragma once

// Everything of the companion library.
#include <Legacy/IfKit/AtomicFile.h>
#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/DirectoryFile.h>
#include <Legacy/IfKit/Explain.h>
#include <Legacy/IfKit/Export.h>
#include <Legacy/IfKit/Families.h>
#include <Legacy/IfKit/FreshSchema.h>
#include <Legacy/IfKit/Json.h>
#include <Legacy/IfKit/ObservableDirectory.h>
#include <Legacy/IfKit/RecordFile.h>
#include <Legacy/IfKit/Records.h>
#include <Legacy/IfKit/TypeNames.h>
#include <Legacy/IfKit/ValueText.h>
#include <Legacy/IfKit/Visit.h>
