// (placeholder)
