// Nothing: what is left of loading it is loading the libraries that it is linked to.
