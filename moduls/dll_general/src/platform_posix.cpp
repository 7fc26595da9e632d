// The operating system behind the library: POSIX.
