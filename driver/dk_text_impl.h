// Template definitions of dk_text.h.
#pragma once
