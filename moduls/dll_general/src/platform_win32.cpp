// The operating system behind the library: Windows.
