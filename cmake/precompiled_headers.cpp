// The one source of a library that exists for its precompiled headers.
