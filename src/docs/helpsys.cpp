// (placeholder, replaced by the help system)
