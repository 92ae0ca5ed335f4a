// Filled in next.
