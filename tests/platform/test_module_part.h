// A part of the test module that lies in a library of its own, as the rooms of the real module do.
#pragma once

bool PartWasMade();
