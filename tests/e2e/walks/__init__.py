"""Random walks over pages and documents, in an order that a seed decides, with what has to hold after each step."""
