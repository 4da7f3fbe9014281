# Makes the target kvtbase::kvtbase.  A program needs nothing else: the library
# brings the shared objects that it stands on.
include("${CMAKE_CURRENT_LIST_DIR}/kvtbaseTargets.cmake")
