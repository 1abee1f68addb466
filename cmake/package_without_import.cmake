message(FATAL_ERROR "This build cannot import, and is not packaged: scripts/dependencies import, and configure again")
